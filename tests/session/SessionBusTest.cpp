// The agent on a real message bus that comes, goes and hangs.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDBusMessage>

#include "desktop/session/DesktopNotification.h"
#include "desktop/session/FeedbackHaptics.h"
#include "desktop/session/QtRunLoop.h"
#include "desktop/session/SingleInstance.h"
#include "tests/session/PrivateBus.h"
#include "tests/support/WaitFor.h"

namespace valdrix::desktop {
namespace {

using testing::ElementsAre;
using testing::StartsWith;

struct Outcome {
  int exitCode;
  std::string text;
};

/// Runs the probe while this process answers.
Outcome probe(const QStringList& words) {
  auto environment = QProcessEnvironment::systemEnvironment();
  environment.insert("XDG_ACTIVATION_TOKEN", "token");
  tests::ChildProcess child(AGENT_PROBE, words, environment);
  if (!tests::waitFor([&] { return !child.isRunning(); })) return {-1, "hangs"};
  return {child.process().exitCode(),
          QString(child.process().readAllStandardOutput()).trimmed().toStdString()};
}

struct Agent {
  explicit Agent(platform::RunLoop& runLoop) : bus(runLoop) {}

  AgentAnswer note(const std::string& call) {
    calls.push_back(call);
    return {true, call};
  }

  SessionBus bus;
  std::vector<std::string> calls;
  AgentObject object{{
      .status =
          [] {
            return AgentAnswer{true, "{\"é\": 1}"};
          },
      .openSettings =
          [this](const SettingsRequest& request) {
            const auto tab = request.tab ? std::to_string(*request.tab) : "any";
            return note("settings " + tab + ' ' + request.activation.text());
          },
      .pressKey =
          [this](const AgentObject::KeyPress& press) {
            if (press.code == 2) return AgentAnswer{false, "éteint"};
            return note("key " + std::to_string(press.code) + (press.isFine ? " fine" : "") +
                        (press.isRepeat ? " repeat" : ""));
          },
      .showVolume = [this] { return note("volume"); },
      .showBrightness = [this] { return note("brightness"); },
      .previewHousing =
          [this](view::Size size) {
            return note(std::to_string(size.width) + 'x' + std::to_string(size.height));
          },
      .endPreview = [this] { (void)note("end"); },
      .quit = [this] { return note("quit"); },
  }};
  SingleInstance instance{bus, object};
};

SingleInstance::Claim claim(Agent& agent) {
  return agent.instance.claim({std::nullopt, ActivationToken({})});
}

bool isConnected(const Agent& agent) { return agent.bus.connection().has_value(); }

TEST(SingleInstance, OwnsTheNameAnswersAndIsHandedOverTo) {
  tests::PrivateBus bus;
  ASSERT_TRUE(bus.start());
  QtRunLoop runLoop;
  EXPECT_EQ(probe({"status"}).text, "valdrix ne tourne pas.");
  EXPECT_EQ(probe({"quit"}).exitCode, 1);

  auto agent = std::make_unique<Agent>(runLoop);
  ASSERT_EQ(claim(*agent), SingleInstance::Claim::only);
  const auto status = probe({"status"});
  EXPECT_EQ(status.exitCode, 0);
  EXPECT_EQ(status.text, "{\"é\": 1}");

  EXPECT_EQ(probe({"start"}).text, "handed over");
  EXPECT_EQ(probe({"quit"}).exitCode, 0);
  EXPECT_THAT(agent->calls, ElementsAre("settings any token", "quit"));
  agent.reset();
  EXPECT_EQ(probe({"start"}).text, "only") << "the name is free again";
}

TEST(AgentObject, CommandsArriveAndAreAnswered) {
  const struct {
    QStringList words;
    int exitCode;
    const char* text;
  } rows[] = {
      {{"settings", "2"}, 0, "settings 2 token"},
      {{"key", "0"}, 0, "key 0"},
      {{"key", "7", "fine", "repeat"}, 0, "key 7 fine repeat"},
      {{"key", "2"}, 1, "éteint"},
      {{"volume"}, 0, "volume"},
      {{"brightness"}, 0, "brightness"},
  };
  tests::PrivateBus bus;
  ASSERT_TRUE(bus.start());
  QtRunLoop runLoop;
  Agent agent(runLoop);
  ASSERT_EQ(claim(agent), SingleInstance::Claim::only);
  for (const auto& row : rows) {
    const auto outcome = probe(row.words);
    EXPECT_EQ(outcome.exitCode, row.exitCode) << row.text;
    EXPECT_EQ(outcome.text, row.text);
  }
}

TEST(AgentObject, APreviewLastsAsLongAsWhoAskedForIt) {
  tests::PrivateBus bus;
  ASSERT_TRUE(bus.start());
  QtRunLoop runLoop;
  Agent agent(runLoop);
  ASSERT_EQ(claim(agent), SingleInstance::Claim::only);
  const auto begin = [&] {
    auto child = std::make_unique<tests::ChildProcess>(AGENT_PROBE, QStringList{"preview"});
    EXPECT_TRUE(tests::waitFor([&] { return !agent.calls.empty(); }));
    EXPECT_THAT(agent.calls, ElementsAre(StartsWith("185.5")));
    return child;
  };
  const auto hasEnded = [&] { return agent.calls.back() == "end"; };
  begin()->kill();
  EXPECT_TRUE(tests::waitFor(hasEnded)) << "the command was killed";
  agent.calls.clear();
  const auto child = begin();
  bus.kill();
  EXPECT_TRUE(tests::waitFor(hasEnded)) << "the bus has gone";
}

TEST(SingleInstance, WithoutABusTheAgentRunsAndCommandsSaySo) {
  qunsetenv("DBUS_SESSION_BUS_ADDRESS");
  for (const char* address : {"", "unix:path=/nonexistent/bus", "unix:abstract=valdrix-none",
                              "autolaunch:", "nonsense"}) {
    SCOPED_TRACE(address);
    qputenv("DBUS_SESSION_BUS_ADDRESS", address);
    qputenv("XDG_RUNTIME_DIR", "/nonexistent");
    QtRunLoop runLoop;
    Agent agent(runLoop);
    EXPECT_EQ(claim(agent), SingleInstance::Claim::only);
    const auto status = probe({"status"});
    EXPECT_EQ(status.exitCode, 1);
    EXPECT_EQ(status.text, "Impossible de joindre valdrix : pas de bus de session.");
    FeedbackHaptics(agent.bus).performFeedbackPattern({}, {});
  }
  qunsetenv("DBUS_SESSION_BUS_ADDRESS");
}

TEST(SingleInstance, TakesTheNameWheneverABusAppears) {
  tests::PrivateBus bus;
  QtRunLoop runLoop;
  Agent agent(runLoop);
  EXPECT_EQ(claim(agent), SingleInstance::Claim::only);
  for (int round = 0; round < 3; ++round) {
    SCOPED_TRACE(round);
    ASSERT_TRUE(bus.start());
    ASSERT_TRUE(tests::waitFor([&] { return isConnected(agent); }));
    EXPECT_EQ(probe({"status"}).text, "{\"é\": 1}");
    EXPECT_EQ(probe({"start"}).text, "handed over");
    bus.kill();
    ASSERT_TRUE(tests::waitFor([&] { return !isConnected(agent); }));
  }
  EXPECT_EQ(agent.calls.size(), 3U);
}

TEST(SingleInstance, AHangingBusIsNotWaitedFor) {
  tests::PrivateBus bus;
  ASSERT_TRUE(bus.start());
  QtRunLoop runLoop;
  Agent agent(runLoop);
  bus.setHanging(true);
  EXPECT_FALSE(Agent(runLoop).bus.waitUntilConnected(0.01)) << "given up while it is under way";
  EXPECT_EQ(probe({"status"}).exitCode, 1);
  EXPECT_EQ(claim(agent), SingleInstance::Claim::only);
  bus.setHanging(false);
  EXPECT_TRUE(tests::waitFor([&] { return isConnected(agent); }));
}

/// A service of the desktop that notes the calls it gets.
class RecordingService : private QDBusVirtualObject {
 public:
  explicit RecordingService(const char* name)
      : connection_(QDBusConnection::connectToBus(QDBusConnection::SessionBus, name)) {
    connection_.registerVirtualObject("/", this, QDBusConnection::SubPath);
    connection_.registerService(name);
  }
  ~RecordingService() override { QDBusConnection::disconnectFromBus(connection_.name()); }

  std::vector<QDBusMessage> calls;

 private:
  [[nodiscard]] QString introspect(const QString&) const override { return {}; }
  bool handleMessage(const QDBusMessage& message, const QDBusConnection&) override {
    calls.push_back(message);
    return true;
  }
  QDBusConnection connection_;
};

TEST(DesktopServices, FeedbackAndNotificationsReachTheirService) {
  tests::PrivateBus bus;
  ASSERT_TRUE(bus.start());
  RecordingService notifications("org.freedesktop.Notifications");
  RecordingService feedback("org.sigxcpu.Feedback");
  bus.setHanging(true);
  QtRunLoop runLoop;
  SessionBus session(runLoop);
  DesktopNotification notification(session);
  notification.show({"replaced by the next", ""});
  notification.show(DesktopNotification::mediaKeysTaken());
  bus.setHanging(false);
  ASSERT_TRUE(tests::waitFor([&] { return !notifications.calls.empty(); }));
  EXPECT_EQ(notifications.calls[0].signature(), "susssasa{sv}i");
  EXPECT_EQ(notifications.calls[0].arguments()[3].toString().toStdString(),
            DesktopNotification::mediaKeysTaken().title);

  FeedbackHaptics(session).performFeedbackPattern(platform::HapticPattern::alignment, {});
  ASSERT_TRUE(tests::waitFor([&] { return !feedback.calls.empty(); }));
  EXPECT_EQ(feedback.calls[0].signature(), "ssa{sv}i");
  EXPECT_EQ(feedback.calls[0].arguments()[1], "button-pressed");
  EXPECT_FALSE(feedback.calls[0].isReplyRequired());
  EXPECT_EQ(notifications.calls.size(), 1U);
}

}  // namespace
}  // namespace valdrix::desktop
