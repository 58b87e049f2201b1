// The program on a compositor, with Qt on Wayland as well, from its start to its end.

#include <csignal>
#include <gtest/gtest.h>

#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include "tests/display/SysfsTree.h"
#include "tests/session/PrivateBus.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/SwayCompositor.h"
#include "tests/support/WaitFor.h"
#include "tests/support/WaylandTestClient.h"

namespace valdrix::tests {
namespace {

constexpr QSize extent{1500, 1000};
constexpr QPointF inNotch{750, 16};

class AgentOnWayland : public testing::Test {
 protected:
  AgentOnWayland() {
    EXPECT_TRUE(bus.start());
    sysfs.addBacklight("panel", "raw", "", 960);
    sysfs.setBrightness("panel", 480);
    compositor.enter();
    client = std::make_unique<WaylandTestClient>(extent);
    client->movePointer({1, 900});
  }
  void start() {
    agent = std::make_unique<ChildProcess>(VALDRIX_PROGRAM, QStringList{}, environment());
    ASSERT_TRUE(waitFor([&] { return pixel(inNotch.toPoint()) == Qt::black; }));
  }
  [[nodiscard]] QProcessEnvironment environment() const {
    auto variables = QProcessEnvironment::systemEnvironment();
    for (const auto* name : {"DISPLAY", "QT_QPA_PLATFORM"}) variables.remove(name);
    variables.insert("HOME", home.path());
    variables.insert("XDG_CONFIG_HOME", home.filePath("config"));
    // Qt's plugin forgets its own at the end, and nothing in the trace but the client library names
    // it; of what is ours in that library, the tests in this process tell.
    variables.insert("LSAN_OPTIONS", "suppressions=" QT_LEAKS ":print_suppressions=0");
    variables.insert("VALDRIX_SYSFS", QString::fromStdString(sysfs.root().string()));
    return variables;
  }
  [[nodiscard]] ChildProcess::Result command(const QStringList& words) const {
    return ChildProcess::run(VALDRIX_PROGRAM, words, environment());
  }
  [[nodiscard]] QJsonObject status() const {
    return QJsonDocument::fromJson(command({"status"}).output.toUtf8()).object();
  }
  [[nodiscard]] bool awaitPresentation(const char* wanted) const {
    return waitFor(
        [&] { return status()["notch"].toObject()["presentation"] == QLatin1String(wanted); });
  }
  [[nodiscard]] QColor pixel(QPoint at) const { return compositor.screenshot().pixelColor(at); }

  PrivateBus bus;
  SysfsTree sysfs;
  QTemporaryDir home;
  SwayCompositor compositor;
  std::unique_ptr<WaylandTestClient> client;
  std::unique_ptr<ChildProcess> agent;
};

TEST_F(AgentOnWayland, ExpandsUnderThePointerAndShowsLevels) {
  for (const int scale : {1, 2}) {
    ASSERT_TRUE(compositor.command("output HEADLESS-1 scale " + std::to_string(scale)));
    client = std::make_unique<WaylandTestClient>(extent / scale);
    client->movePointer({1, 300});
    start();
    EXPECT_TRUE(status()["backends"].toObject()["windowSystem"].toString().startsWith("wayland"));
    client->movePointer(inNotch / scale);
    EXPECT_TRUE(awaitPresentation("expanded"));
    EXPECT_TRUE(waitFor([&] { return pixel({750, 60 * scale}) == Qt::black; })) << "grown";
    client->movePointer({1, 300});
    EXPECT_TRUE(awaitPresentation("collapsed"));
    EXPECT_EQ(command({"key", "brightness-up"}).exitCode, 0);
    EXPECT_TRUE(waitFor([&] { return sysfs.brightness("panel") > 480; }));
    EXPECT_TRUE(waitFor([&] { return pixel({650, 50 * scale}) == Qt::black; })) << "the indicator";
    EXPECT_EQ(command({"quit"}).exitCode, 0);
    EXPECT_TRUE(agent->process().waitForFinished());
    EXPECT_EQ(agent->process().exitCode(), 0);
    sysfs.setBrightness("panel", 480);
  }
}

TEST_F(AgentOnWayland, ComesBackWithItsCompositor) {
  start();
  const auto pid = agent->pid();
  client.reset();
  compositor.stop();
  ASSERT_TRUE(compositor.start());
  EXPECT_TRUE(waitFor([&] { return pixel(inNotch.toPoint()) == Qt::black; }, 30000));
  EXPECT_TRUE(agent->isRunning());
  EXPECT_EQ(agent->pid(), pid);
  EXPECT_EQ(command({"quit"}).exitCode, 0);
  EXPECT_TRUE(agent->process().waitForFinished());
}

}  // namespace
}  // namespace valdrix::tests
