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

using Sinks = std::vector<std::pair<std::string, double>>;

/// The first sink is the default.
PulseSnapshot serverWith(std::uint64_t connection, const Sinks& sinks) {
  PulseSnapshot snapshot{connection, sinks.empty() ? "@DEFAULT_SINK@" : sinks[0].first, {}};
  for (const auto& [name, volume] : sinks)
    snapshot.sinks.push_back({name, volumeOf({volume, volume}), false});
  return snapshot;
}

/// What the server says, and the seconds until its next word.
struct Word {
  std::uint64_t connection;  ///< 0: there is no server
  Sinks sinks;
  double pause;
};

class SnapshotGateTest : public testing::Test {
 protected:
  struct Step {
    Word word;
    /// What is believed in the pause, in order: the default sink and its percentage, "-" without.
    const char* believed;
  };
  void follow(const std::vector<Step>& steps) {
    for (const auto& [word, believed] : steps) {
      const auto snapshot = serverWith(word.connection, word.sinks);
      std::exchange(isFirst_, false) ? gate_.begin(snapshot) : gate_.receive(snapshot);
      loop_.advance(word.pause);
      EXPECT_EQ(std::exchange(believed_, ""), believed) << word.connection << " at " << loop_.now();
    }
  }

  sim::Trace trace_;
  sim::ManualRunLoop loop_{trace_};
  bool isFirst_ = true;
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
  follow({{{1, {{"a", 0.5}}, 0}, "a50"},
          {{1, {{"a", 0.6}}, 0}, "a60"},
          {{1, {{"b", 1}, {"a", 0.6}}, 0}, "b100"}});
  EXPECT_EQ(loop_.timerCount(), 0U);
}

TEST_F(SnapshotGateTest, ALoginShowsOnlyItsEnd) {
  follow({{{0, {}, 0}, ""},
          {{1, {}, 0}, "-"},
          {{1, {{"auto_null", 1}}, 0.5}, "-"},
          {{1, {{"hdmi", 1}}, 0.2}, ""},
          {{1, {{"card", 1}, {"hdmi", 1}}, 0.2}, ""},
          {{1, {{"card", 0.3}, {"hdmi", 1}}, 0.2}, ""},
          // Another sink's change is no unrest.
          {{1, {{"card", 0.3}, {"hdmi", 0.5}}, 0.1}, "card30"}});
}

TEST_F(SnapshotGateTest, UnrestHasAnEnd) {
  gate_.begin({});
  for (int i = 0; i < 30; ++i) {
    gate_.receive(serverWith(1, {{"a", 0.01 * i}}));
    loop_.advance(0.1);
  }
  EXPECT_NE(believed_, "");
}

TEST_F(SnapshotGateTest, ARestartIsNoNews) {
  follow({{{1, {{"a", 0.5}}, 0}, "a50"}, {{0, {}, 60}, ""}});
  EXPECT_EQ(loop_.timerCount(), 0U) << "nothing waits while there is no server";
  follow({{{2, {{"auto_null", 1}}, 1}, ""},
          {{2, {{"a", 1}}, 0.1}, ""},
          {{2, {{"a", 0.5}}, 0}, ""},
          {{2, {{"a", 0.5}}, 1}, "a50"},
          // One so quick that its loss was never heard of.
          {{3, {{"b", 1}}, 0.1}, ""},
          {{3, {{"a", 0.5}}, 1}, "a50"}});
}

TEST_F(SnapshotGateTest, NoOutputIsBelievedWhenItLasts) {
  follow({{{1, {{"a", 0.5}}, 0}, "a50"}, {{1, {}, 1}, ""}, {{1, {}, 1}, ""}, {{1, {}, 1}, "-"}});
  EXPECT_EQ(loop_.timerCount(), 0U);
  follow({{{1, {{"a", 0.5}}, 1}, "a50"},
          // A gap while the default is replaced.
          {{1, {}, 0.1}, ""},
          {{1, {{"b", 1}}, 10}, "b100"}});
}

class SecondLookTest : public testing::Test {
 protected:
  void receive(const Word& word) {
    secondLook_.receive(serverWith(word.connection, word.sinks));
    loop_.advance(word.pause);
  }

  sim::Trace trace_;
  sim::ManualRunLoop loop_{trace_};
  int looks_ = 0;
  SecondLook secondLook_{loop_, [this] { ++looks_; }};
};

TEST_F(SecondLookTest, ComesOnceAfterAServerHasAppeared) {
  for (const auto& word : {Word{1, {{"a", 1}}, 2}, {1, {{"b", 1}}, 2}}) receive(word);
  EXPECT_EQ(looks_, 1);
  for (const auto& word : {Word{0, {}, 0}, {2, {{"b", 1}}, 0}}) receive(word);
  EXPECT_EQ(loop_.timerCount(), 0U) << "the connection that was asked for";
  for (const auto& word : {Word{0, {}, 0}, {3, {{"b", 1}}, 1}, {0, {}, 60}, {4, {}, 60}})
    receive(word);
  EXPECT_EQ(looks_, 1) << "nothing to ask, nothing to ask about";
}

TEST_F(SecondLookTest, IsFollowedByAnotherWhenItFoundWhatWasMissed) {
  for (const auto& word : {Word{1, {{"a", 1}}, 4}, {0, {}, 0}, {2, {{"b", 1}}, 4}}) receive(word);
  EXPECT_EQ(looks_, 2);
  for (const auto& word : {Word{0, {}, 0}, {3, {{"b", 1}}, 60}}) receive(word);
  EXPECT_EQ(looks_, 2);
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
  receive({doubtful.connection, {{"a", 1}}, 120});
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
  EXPECT_EQ(devices.find(a), nullptr);
  EXPECT_NE(devices.defaultDevice(), a);
  static_cast<void>(devices.update(serverWith(7, {{"a", 0.75}, {"b", 0.5}})));
  EXPECT_EQ(devices.defaultDevice(), a);
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

TEST(ChannelBalance, IsTheLastOneThatWasHeard) {
  ChannelBalance balance;
  balance.observe(volumeOf({1, 0.5, 0.25}));
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
