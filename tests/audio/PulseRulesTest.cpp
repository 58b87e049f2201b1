// The rules of the sound server's adapter that need no server: what is believed when, which device
// is which, and how a balance lasts.

#include <cmath>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "desktop/audio/ChannelBalance.h"
#include "desktop/audio/PulseDevices.h"
#include "desktop/audio/SecondLook.h"
#include "desktop/audio/SnapshotGate.h"
#include "sim/ManualRunLoop.h"

namespace valdrix::desktop {
namespace {

pa_cvolume volumeOf(std::vector<double> channels) {
  pa_cvolume volume{};
  volume.channels = static_cast<std::uint8_t>(channels.size());
  for (std::size_t i = 0; i < channels.size(); ++i)
    volume.values[i] = static_cast<pa_volume_t>(std::lround(channels[i] * PA_VOLUME_NORM));
  return volume;
}

PulseSnapshot serverWith(std::uint64_t connection,
                         std::vector<std::pair<std::string, double>> sinks) {
  PulseSnapshot snapshot{connection, sinks.empty() ? "@DEFAULT_SINK@" : sinks[0].first, {}};
  for (const auto& [name, volume] : sinks)
    snapshot.sinks.push_back({name, volumeOf({volume, volume}), false});
  return snapshot;
}
const PulseSnapshot noServer;

class SnapshotGateTest : public testing::Test {
 protected:
  void receive(const PulseSnapshot& snapshot) { gate_.receive(snapshot); }
  /// What was believed since the last call: the default sink and its percentage, "-" without one.
  std::string believed() { return std::exchange(believed_, ""); }

  sim::Trace trace_;
  sim::ManualRunLoop loop_{trace_};
  std::string believed_;
  SnapshotGate gate_{
      loop_, [this](const PulseSnapshot& snapshot) {
        const PulseSink* output = snapshot.output();
        believed_ +=
            (believed_.empty() ? "" : " ") +
            (output ? output->name + std::to_string(std::lround(100.0 * output->volume.values[0] /
                                                                PA_VOLUME_NORM))
                    : "-");
      }};
};

TEST_F(SnapshotGateTest, ARunningServerIsBelievedFromTheFirstWordOn) {
  gate_.begin(serverWith(1, {{"a", 0.5}}));
  EXPECT_EQ(believed(), "a50");
  receive(serverWith(1, {{"a", 0.6}}));
  receive(serverWith(1, {{"b", 1}, {"a", 0.6}}));
  EXPECT_EQ(believed(), "a60 b100");
  EXPECT_EQ(loop_.timerCount(), 0U);
}

TEST_F(SnapshotGateTest, ALoginShowsOnlyItsEnd) {
  gate_.begin(noServer);
  EXPECT_EQ(believed(), "");
  receive(serverWith(1, {}));
  receive(serverWith(1, {{"auto_null", 1}}));
  loop_.advance(0.5);
  believed();
  receive(serverWith(1, {{"hdmi", 1}}));
  loop_.advance(0.2);
  receive(serverWith(1, {{"card", 1}, {"hdmi", 1}}));
  loop_.advance(0.2);
  receive(serverWith(1, {{"card", 0.3}, {"hdmi", 1}}));
  loop_.advance(0.2);
  EXPECT_EQ(believed(), "");
  receive(serverWith(1, {{"card", 0.3}, {"hdmi", 0.5}}));
  loop_.advance(0.1);
  EXPECT_EQ(believed(), "card30") << "another sink's change is no unrest";
}

TEST_F(SnapshotGateTest, UnrestHasAnEnd) {
  gate_.begin(noServer);
  for (int i = 0; i < 30; ++i) {
    receive(serverWith(1, {{"a", 0.01 * i}}));
    loop_.advance(0.1);
  }
  EXPECT_NE(believed(), "");
}

TEST_F(SnapshotGateTest, ARestartIsNoNews) {
  gate_.begin(serverWith(1, {{"a", 0.5}}));
  believed();
  receive(noServer);
  loop_.advance(60);
  EXPECT_EQ(believed(), "");
  EXPECT_EQ(loop_.timerCount(), 0U) << "nothing waits while there is no server";
  receive(serverWith(2, {{"auto_null", 1}}));
  loop_.advance(1);
  receive(serverWith(2, {{"a", 1}}));
  loop_.advance(0.1);
  receive(serverWith(2, {{"a", 0.5}}));
  EXPECT_EQ(believed(), "");
  loop_.advance(1);
  EXPECT_EQ(believed(), "a50");

  // One so quick that its loss was never heard of.
  receive(serverWith(3, {{"b", 1}}));
  loop_.advance(0.1);
  receive(serverWith(3, {{"a", 0.5}}));
  loop_.advance(1);
  EXPECT_EQ(believed(), "a50");
}

TEST_F(SnapshotGateTest, NoOutputIsBelievedWhenItLasts) {
  gate_.begin(serverWith(1, {{"a", 0.5}}));
  believed();
  for (int i = 0; i < 3; ++i) {
    receive(serverWith(1, {}));
    loop_.advance(1);
  }
  EXPECT_EQ(believed(), "-");
  EXPECT_EQ(loop_.timerCount(), 0U);
  receive(serverWith(1, {{"a", 0.5}}));
  loop_.advance(1);
  EXPECT_EQ(believed(), "a50");
  receive(serverWith(1, {}));
  loop_.advance(0.1);
  receive(serverWith(1, {{"b", 1}}));
  loop_.advance(10);
  EXPECT_EQ(believed(), "b100") << "a gap while the default is replaced";
}

class SecondLookTest : public testing::Test {
 protected:
  sim::Trace trace_;
  sim::ManualRunLoop loop_{trace_};
  int looks_ = 0;
  SecondLook secondLook_{loop_, [this] { ++looks_; }};
};

TEST_F(SecondLookTest, ComesOnceAfterAServerHasAppeared) {
  secondLook_.receive(serverWith(1, {{"a", 1}}));
  loop_.advance(2);
  secondLook_.receive(serverWith(1, {{"b", 1}}));
  loop_.advance(2);
  EXPECT_EQ(looks_, 1);
  secondLook_.receive(noServer);
  secondLook_.receive(serverWith(2, {{"b", 1}}));
  EXPECT_EQ(loop_.timerCount(), 0U) << "the connection that was asked for";
  secondLook_.receive(noServer);
  secondLook_.receive(serverWith(3, {{"b", 1}}));
  loop_.advance(1);
  secondLook_.receive(noServer);
  loop_.advance(60);
  EXPECT_EQ(looks_, 1) << "nothing to ask";
  secondLook_.receive(serverWith(4, {}));
  loop_.advance(60);
  EXPECT_EQ(looks_, 1) << "nothing to ask about";
}

TEST_F(SecondLookTest, ComesEverMoreRarelyWhileNoSinkIsTheDefault) {
  auto doubtful = serverWith(1, {{"a", 1}});
  doubtful.defaultSink = "@DEFAULT_SINK@";
  for (int second = 0; second < 3600; ++second) {
    const int before = looks_;
    secondLook_.receive(doubtful);
    loop_.advance(1);
    if (looks_ > before) ++doubtful.connection;
  }
  EXPECT_GT(looks_, 10);
  EXPECT_LT(looks_, 70);
  secondLook_.receive(serverWith(doubtful.connection, {{"a", 1}}));
  loop_.advance(120);
  const int before = looks_;
  secondLook_.receive(doubtful);
  loop_.advance(2);
  EXPECT_EQ(looks_, before + 1) << "a new doubt is followed soon";
}

TEST(PulseDevices, ASinkKeepsItsIdAndNobodyElseGetsIt) {
  PulseDevices devices;
  static_cast<void>(devices.update(serverWith(1, {{"a", 0.5}, {"b", 0.5}})));
  const auto a = devices.defaultDevice();
  static_cast<void>(devices.update(serverWith(1, {{"b", 0.5}, {"c", 0.5}})));
  const auto b = devices.defaultDevice();
  EXPECT_EQ(devices.find(a), nullptr);
  EXPECT_NE(a, b);
  const auto changed = devices.update(serverWith(7, {{"a", 0.75}, {"b", 0.5}}));
  EXPECT_EQ(devices.defaultDevice(), a);
  ASSERT_EQ(changed.size(), 2U);
  EXPECT_EQ(changed[0].object, platform::audioSystemObject);
  EXPECT_EQ(changed[1].object, a);
  EXPECT_EQ(changed[1].address, platform::audioAddress::volume);
}

TEST(PulseDevices, ASinkWithoutVolumeCanBeMutedOnly) {
  PulseDevices devices;
  auto snapshot = serverWith(1, {{"digital", 0}});
  snapshot.sinks[0].volume = {};
  static_cast<void>(devices.update(snapshot));
  const PulseDevice* device = devices.find(devices.defaultDevice());
  ASSERT_NE(device, nullptr);
  EXPECT_EQ(device->volume, std::nullopt);
  snapshot.sinks[0].isMuted = true;
  EXPECT_EQ(devices.update(snapshot).size(), 1U);
  EXPECT_TRUE(device->isMuted);
}

TEST(ChannelBalance, LastsThroughSilenceAndNearSilence) {
  ChannelBalance balance;
  balance.observe(volumeOf({1, 0.5, 0.25}));
  for (const pa_volume_t level : {0U, 3U, 0U, 17U, 1U}) balance.observe(balance.scaledTo(level));
  const auto again = balance.scaledTo(PA_VOLUME_NORM);
  const auto expected = volumeOf({1, 0.5, 0.25});
  EXPECT_TRUE(pa_cvolume_equal(&again, &expected));

  balance.observe(volumeOf({0.25, 1, 1}));
  const auto half = balance.scaledTo(PA_VOLUME_NORM / 2);
  const auto others = volumeOf({0.125, 0.5, 0.5});
  EXPECT_TRUE(pa_cvolume_equal(&half, &others)) << "another program's balance is followed";

  balance.observe(volumeOf({0, 0}));
  const auto heard = balance.scaledTo(PA_VOLUME_NORM);
  const auto equal = volumeOf({1, 1});
  EXPECT_TRUE(pa_cvolume_equal(&heard, &equal)) << "a sink never heard has none";
}

}  // namespace
}  // namespace valdrix::desktop
