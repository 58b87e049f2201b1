// The agent on a real message bus that comes, goes and hangs.

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

struct Outcome {
  int exitCode;
  std::string text;
};

/// Runs the probe while this process answers.
Outcome probe(const char* command) {
  tests::ChildProcess child(AGENT_PROBE, {command});
  if (!tests::waitFor([&] { return !child.isRunning(); })) return {-1, "hangs"};
  return {child.process().exitCode(),
          QString(child.process().readAllStandardOutput()).trimmed().toStdString()};
}

struct Agent {
  explicit Agent(platform::RunLoop& runLoop) : bus(runLoop) {}

  SessionBus bus;
  int quits = 0;
  int activations = 0;
  SingleInstance instance{bus,
                          {.status = [] { return std::string("{\"é\": 1}"); },
                           .requestCalendarAccess = [] { return std::string(); },
                           .quit = [this] { ++quits; },
                           .activate = [this] { ++activations; }}};
};

bool isConnected(const Agent& agent) { return agent.bus.connection().has_value(); }

TEST(SingleInstance, OwnsTheNameAnswersAndIsHandedOverTo) {
  tests::PrivateBus bus;
  ASSERT_TRUE(bus.start());
  QtRunLoop runLoop;
  EXPECT_EQ(probe("status").text, "valdrix ne tourne pas.");
  EXPECT_EQ(probe("quit").exitCode, 1);

  auto agent = std::make_unique<Agent>(runLoop);
  ASSERT_EQ(agent->instance.claim(), SingleInstance::Claim::only);
  const auto status = probe("status");
  EXPECT_EQ(status.exitCode, 0);
  EXPECT_EQ(status.text, "{\"é\": 1}");

  EXPECT_EQ(probe("start").text, "handed over");
  EXPECT_EQ(agent->activations, 1);
  EXPECT_EQ(agent->quits, 0);

  EXPECT_EQ(probe("quit").exitCode, 0);
  EXPECT_EQ(agent->quits, 1);
  agent.reset();
  EXPECT_EQ(probe("start").text, "only") << "the name is free again";
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
    EXPECT_EQ(agent.instance.claim(), SingleInstance::Claim::only);
    const auto status = probe("status");
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
  EXPECT_EQ(agent.instance.claim(), SingleInstance::Claim::only);
  for (int round = 0; round < 3; ++round) {
    SCOPED_TRACE(round);
    ASSERT_TRUE(bus.start());
    ASSERT_TRUE(tests::waitFor([&] { return isConnected(agent); }));
    EXPECT_EQ(probe("status").text, "{\"é\": 1}");
    EXPECT_EQ(probe("start").text, "handed over");
    bus.kill();
    ASSERT_TRUE(tests::waitFor([&] { return !isConnected(agent); }));
  }
  EXPECT_EQ(agent.activations, 3);
}

TEST(SingleInstance, AHangingBusIsNotWaitedFor) {
  tests::PrivateBus bus;
  ASSERT_TRUE(bus.start());
  QtRunLoop runLoop;
  Agent agent(runLoop);
  bus.setHanging(true);
  EXPECT_FALSE(Agent(runLoop).bus.waitUntilConnected(0.01)) << "given up while it is under way";
  EXPECT_EQ(probe("status").exitCode, 1);
  EXPECT_EQ(agent.instance.claim(), SingleInstance::Claim::only);
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
