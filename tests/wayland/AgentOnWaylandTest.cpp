// The program on a compositor, with Qt on Wayland as well, from its start to its end.

#include <csignal>
#include <gtest/gtest.h>

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <linux/input-event-codes.h>

#include "tests/display/SysfsTree.h"
#include "tests/e2e/UserHome.h"
#include "tests/session/PrivateBus.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/SoundServer.h"
#include "tests/support/SwayCompositor.h"
#include "tests/support/WaitFor.h"
#include "tests/support/WaylandTestClient.h"

namespace valdrix::tests {
namespace {

constexpr QSize extent{1500, 1000};
constexpr QPointF inNotch{750, 16};
constexpr QPointF farAway{1, 900};
/// Below the notch, where an indicator hangs.
constexpr QPoint inIndicator{650, 50};
/// The first event's row in the expanded panel: the bar in its calendar's colour, and its title.
constexpr QPoint onBar{652, 93};
constexpr QPointF onTitle{824, 93};
constexpr auto sink = "output";

class AgentOnWayland : public testing::Test {
 protected:
  explicit AgentOnWayland(const std::string& settings = {}) : compositor(nullptr, settings) {
    EXPECT_TRUE(bus.start());
    sysfs.addBacklight("panel", "raw", "", 960);
    sysfs.setBrightness("panel", 480);
    compositor.enter();
    client = std::make_unique<WaylandTestClient>(extent);
    client->movePointer(farAway);
  }
  void start() {
    agent = std::make_unique<ChildProcess>(VALDRIX_PROGRAM, QStringList{}, environment());
    ASSERT_TRUE(waitFor([&] { return pixel(inNotch.toPoint()) == Qt::black; }));
  }
  [[nodiscard]] virtual QProcessEnvironment environment() const {
    auto variables = QProcessEnvironment::systemEnvironment();
    for (const auto* name : {"DISPLAY", "QT_QPA_PLATFORM"}) variables.remove(name);
    home.enter(variables);
    variables.insert("PULSE_SERVER", "unix:" + sound.runtimeFolder().filePath("pulse/native"));
    variables.insert("PULSE_COOKIE", sound.runtimeFolder().filePath("cookie"));
    // Qt's plugin forgets its own at the end, and nothing in the trace but the client library names
    // it; of what is ours in that library, the tests in this process tell.
    variables.insert("LSAN_OPTIONS", "suppressions=" QT_LEAKS ":print_suppressions=0");
    variables.insert("VALDRIX_SYSFS", QString::fromStdString(sysfs.root().string()));
    return variables;
  }
  /// The program's path for the compositor, which may run as a user who cannot read ours.
  [[nodiscard]] std::string programForCompositor() const {
    const auto path = QString::fromStdString(compositor.folder()) + "/valdrix";
    EXPECT_TRUE(QFile::copy(VALDRIX_PROGRAM, path));
    QFile::setPermissions(path, QFile::ReadOther | QFile::ExeOther | QFile::ExeOwner);
    return path.toStdString();
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
  UserHome home;
  SoundServer sound;
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

TEST_F(AgentOnWayland, OpensTheEventThatIsClickedAndTheSettingsAtARightClick) {
  home.addCalendar();
  home.write(UserHome::privacyRecord, "calendars=allowed\n");
  home.chooseCalendarProgram();
  start();
  client->movePointer(inNotch);
  EXPECT_TRUE(waitFor([&] {
    const auto color = pixel(onBar);
    return color.red() > 240 && color.blue() < 20;
  })) << "the event is not shown";
  client->movePointer(onTitle);
  client->setButton(BTN_LEFT, true);
  client->setButton(BTN_LEFT, false);
  EXPECT_EQ(home.awaitCalendarProgram(), "--event=-uid %s@1\na b\n");

  const QPoint inTheMiddle(extent.width() / 2, extent.height() / 2);
  const QColor desktop = pixel(inTheMiddle);
  client->setButton(BTN_RIGHT, true);
  client->setButton(BTN_RIGHT, false);
  EXPECT_TRUE(waitFor([&] { return pixel(inTheMiddle) != desktop; })) << "no settings";
  QFile libraries(QStringLiteral("/proc/%1/maps").arg(agent->pid()));
  ASSERT_TRUE(libraries.open(QIODevice::ReadOnly));
  EXPECT_FALSE(libraries.readAll().contains("libEGL_")) << "a driver draws the window";
}

TEST_F(AgentOnWayland, TakesTheKeysThatTheCompositorBinds) {
  ASSERT_TRUE(sound.start({{.name = sink}}) && sound.setVolume(sink, {0.5}));
  ASSERT_TRUE(compositor.command("bindsym XF86AudioRaiseVolume exec " + programForCompositor() +
                                 " key volume-up"));
  start();
  ASSERT_TRUE(waitFor([&] { return status()["volume"].toObject()["level"].toDouble() > 0; }));
  EXPECT_EQ(SpawnedProgram({"wtype", "-k", "XF86AudioRaiseVolume"}, {}).wait(), 0);
  EXPECT_TRUE(waitFor([&] { return pixel(inIndicator) == Qt::black; })) << "the indicator";
  EXPECT_NEAR(sound.volumes(sink).at(0), 0.5625, 0.001);
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

/// The same through the compositor's X server, as where it has no layer shell.
class AgentOnXwayland : public AgentOnWayland {
 protected:
  // The X server lets in only the user whom it runs as, unless it is told otherwise.
  AgentOnXwayland()
      : AgentOnWayland(
            "xwayland enable\n"
            "exec xhost +local: && printenv DISPLAY >$XDG_RUNTIME_DIR/x.new && "
            "mv $XDG_RUNTIME_DIR/x.new $XDG_RUNTIME_DIR/x\n") {}
  [[nodiscard]] QProcessEnvironment environment() const override {
    auto variables = AgentOnWayland::environment();
    QFile display(QString::fromStdString(compositor.folder()) + "/x");
    EXPECT_TRUE(waitFor([&] { return display.open(QIODevice::ReadOnly); }));
    variables.insert("DISPLAY", QString::fromLatin1(display.readAll().trimmed()));
    variables.insert("QT_QPA_PLATFORM", "xcb");
    return variables;
  }
  [[nodiscard]] bool clickReachesDesktop(QPointF at) {
    const int before = client->presses();
    client->movePointer(at);
    client->setButton(BTN_LEFT, true);
    client->setButton(BTN_LEFT, false);
    return client->presses() > before;
  }
};

TEST_F(AgentOnXwayland, TakesThePointerOnlyWhereItShowsSomething) {
  start();
  EXPECT_TRUE(status()["backends"].toObject()["windowSystem"].toString().startsWith("x11"));
  for (int round = 0; round < 2; ++round) {
    // All of them within the place that the panel has for itself.
    for (const QPointF beside : {QPointF(750, 600), {640, 16}, {860, 16}, {750, 45}})
      EXPECT_TRUE(waitFor([&] { return clickReachesDesktop(beside); }))
          << beside.x() << ',' << beside.y();
    EXPECT_FALSE(clickReachesDesktop(inNotch));
    EXPECT_TRUE(awaitPresentation("expanded"));
    client->movePointer(farAway);
    EXPECT_TRUE(awaitPresentation("collapsed"));
  }
}

}  // namespace
}  // namespace valdrix::tests
