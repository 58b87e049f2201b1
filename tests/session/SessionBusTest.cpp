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
#include "tests/session/RecordingService.h"
#include "tests/support/WaitFor.h"

namespace valdrix::desktop {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::SizeIs;
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

  SessionBus bus;
  std::vector<std::string> calls;
  AgentObject object{{
      .status =
          [] {
            return AgentAnswer{true, "{\"é\": \"\u009B\x7F\"}"};
          },
      .openSettings =
          [this](const SettingsRequest& request) {
            calls.push_back("settings " + request.activation.text());
            return AgentAnswer{true, ""};
          },
      .previewHousing =
          [this](view::Size size) {
            calls.push_back("preview " + std::to_string(size.height));
            return AgentAnswer{true, ""};
          },
      .endPreview = [this] { calls.emplace_back("end"); },
  }};
  SingleInstance instance{bus, object};
};

SingleInstance::Claim claim(Agent& agent) {
  return agent.instance.claim({std::nullopt, ActivationToken({})});
}

bool isConnected(const Agent& agent) { return agent.bus.connection().has_value(); }

TEST(AgentObject, APreviewLastsAsLongAsWhoAskedForIt) {
  tests::PrivateBus bus;
  ASSERT_TRUE(bus.start());
  QtRunLoop runLoop;
  Agent agent(runLoop);
  ASSERT_EQ(claim(agent), SingleInstance::Claim::only);
  const auto begin = [&] {
    auto child = std::make_unique<tests::ChildProcess>(AGENT_PROBE, QStringList{"preview"});
    EXPECT_TRUE(tests::waitFor([&] { return !agent.calls.empty(); }));
    EXPECT_THAT(agent.calls, ElementsAre(StartsWith("preview 32")));
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

TEST(SingleInstance, HasTheNameWheneverThereIsABusAndIsHandedOverTo) {
  tests::PrivateBus bus;
  QtRunLoop runLoop;
  auto agent = std::make_unique<Agent>(runLoop);
  EXPECT_EQ(claim(*agent), SingleInstance::Claim::only);
  for (int round = 0; round < 3; ++round) {
    SCOPED_TRACE(round);
    ASSERT_TRUE(bus.start());
    ASSERT_TRUE(tests::waitFor([&] { return isConnected(*agent); }));
    EXPECT_EQ(probe({"status"}).text, "{\"é\": \"\\u009b\\u007f\"}");
    EXPECT_EQ(probe({"start"}).text, "handed over");
    if (round == 2) break;
    bus.kill();
    ASSERT_TRUE(tests::waitFor([&] { return !isConnected(*agent); }));
  }
  EXPECT_THAT(agent->calls, SizeIs(3));
  EXPECT_THAT(agent->calls, Each("settings token"));
  agent.reset();
  EXPECT_EQ(probe({"status"}).text, "valdrix ne tourne pas.");
  EXPECT_EQ(probe({"start"}).text, "only") << "the name is free again";
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

TEST(SingleInstance, AFullBusIsAskedAgain) {
  tests::PrivateBus bus;
  ASSERT_TRUE(bus.startFull());
  QtRunLoop runLoop;
  Agent agent(runLoop);
  EXPECT_EQ(claim(agent), SingleInstance::Claim::only);
  EXPECT_EQ(probe({"status"}).exitCode, 1);
  bus.kill();
  ASSERT_TRUE(bus.start());
  EXPECT_TRUE(tests::waitFor([&] { return isConnected(agent); }));
}

TEST(DesktopServices, FeedbackAndNotificationsReachTheirService) {
  tests::PrivateBus bus;
  ASSERT_TRUE(bus.start());
  tests::RecordingService notifications("org.freedesktop.Notifications");
  tests::RecordingService feedback("org.sigxcpu.Feedback");
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
