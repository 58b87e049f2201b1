// The rules of the sound server's adapter that need no server: what is believed when, and what is
// asked again.

#include <cmath>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "desktop/audio/PulseDevices.h"
#include "desktop/audio/SecondLook.h"
#include "desktop/audio/SnapshotGate.h"
#include "sim/ManualRunLoop.h"

namespace valdrix::desktop {
namespace {

using Sinks = std::vector<std::pair<std::string, double>>;

/// The first sink is the default.
PulseSnapshot serverWith(std::uint64_t server, const Sinks& sinks) {
  PulseSnapshot snapshot{.server = server,
                         .connection = server,
                         .defaultSink = sinks.empty() ? "@DEFAULT_SINK@" : sinks[0].first,
                         .sinks = {}};
  for (const auto& [name, volume] : sinks) {
    PulseSink& sink = snapshot.sinks.emplace_back(name);
    pa_cvolume_set(&sink.volume, 2, static_cast<pa_volume_t>(volume * PA_VOLUME_NORM));
  }
  return snapshot;
}

class SnapshotGateTest : public testing::Test {
 protected:
  struct Step {
    std::uint64_t server;  ///< 0: there is none
    Sinks sinks;
    double pause;  ///< until its next word
    /// What is believed in the pause, in order: the default sink and its percentage, "-" without.
    const char* believed;
  };
  void follow(const std::vector<Step>& steps) {
    for (const auto& [server, sinks, pause, believed] : steps) {
      gate_.receive(serverWith(server, sinks));
      loop_.advance(pause);
      EXPECT_EQ(std::exchange(believed_, ""), believed) << server << " at " << loop_.now();
    }
  }

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

TEST_F(SnapshotGateTest, ALoginShowsOnlyItsEnd) {
  follow({{0, {}, 0, ""},
          {1, {}, 0, "-"},
          {1, {{"auto_null", 1}}, 0.5, "-"},
          {1, {{"hdmi", 1}}, 0.2, ""},
          {1, {{"card", 1}, {"hdmi", 1}}, 0.2, ""},
          {1, {{"card", 0.3}, {"hdmi", 1}}, 0.2, ""},
          // Another sink's change is no unrest.
          {1, {{"card", 0.3}, {"hdmi", 0.5}}, 0.1, "card30"}});
}

TEST_F(SnapshotGateTest, UnrestHasAnEnd) {
  gate_.receive({});
  for (int i = 0; i < 30; ++i) {
    gate_.receive(serverWith(1, {{"a", 0.01 * i}}));
    loop_.advance(0.1);
  }
  EXPECT_NE(believed_, "");
}

TEST_F(SnapshotGateTest, ARestartIsNoNews) {
  follow({{1, {{"a", 0.5}}, 0, "a50"},
          {1, {{"a", 0.6}}, 0, "a60"},
          {1, {{"a", 0.5}}, 0, "a50"},
          {0, {}, 60, ""}});
  EXPECT_EQ(loop_.timerCount(), 0U) << "nothing waits while there is no server";
  follow({{2, {{"auto_null", 1}}, 1, ""},
          {2, {{"a", 1}}, 0.1, ""},
          {2, {{"a", 0.5}}, 0, "a50"},
          // One so quick that its loss was never heard of.
          {3, {{"b", 1}}, 0.1, ""},
          {3, {{"a", 0.4}}, 0.2, ""},
          {3, {{"a", 0.4}}, 1, "a40"}});
}

TEST_F(SnapshotGateTest, NothingWaitsWhenTheUserAsksForAChange) {
  follow({{1, {{"a", 0.5}, {"b", 1}}, 0, "a50"}, {2, {{"a", 1}}, 0, ""}});
  gate_.expectChange("a");
  follow({{2, {{"a", 0.4}}, 0, "a40"}, {3, {{"a", 1}}, 0, ""}});
  gate_.expectChange("a");
  loop_.advance(1);
  EXPECT_EQ(std::exchange(believed_, ""), "a100") << "what was asked for was there already";
  follow({{4, {{"b", 1}, {"a", 1}}, 0, ""}});
  gate_.expectChange("a");
  loop_.runPending();
  EXPECT_EQ(believed_, "b100") << "where the sound goes now";
}

TEST_F(SnapshotGateTest, NoOutputIsBelievedWhenItLasts) {
  follow({{1, {{"a", 0.5}}, 0, "a50"}, {1, {}, 1, ""}, {1, {}, 1, ""}, {1, {}, 1, "-"}});
  EXPECT_EQ(loop_.timerCount(), 0U);
  follow({{1, {{"a", 0.5}}, 1, "a50"},
          // A gap while the default is replaced.
          {1, {}, 0.1, ""},
          {1, {{"b", 1}}, 10, "b100"}});
}

class SecondLookTest : public testing::Test {
 protected:
  struct Step {
    PulseSnapshot snapshot;
    double pause;
    int looks;  ///< so many in the pause
  };
  void follow(const std::vector<Step>& steps) {
    for (const auto& [snapshot, pause, looks] : steps) {
      secondLook_.receive(snapshot);
      loop_.advance(pause);
      EXPECT_EQ(std::exchange(looks_, 0), looks) << "at " << loop_.now();
    }
  }
  static PulseSnapshot pipeWire(std::uint64_t server, std::uint64_t connection,
                                const Sinks& sinks) {
    auto snapshot = serverWith(server, sinks);
    snapshot.connection = connection;
    snapshot.isPipeWire = true;
    return snapshot;
  }

  sim::Trace trace_;
  sim::ManualRunLoop loop_{trace_};
  int looks_ = 0;
  SecondLook secondLook_{loop_, [this] { ++looks_; }};
};

TEST_F(SecondLookTest, ComesAfterAServerHasAppearedAndAgainWhenItFoundWhatWasMissed) {
  follow({{serverWith(1, {{"a", 1}}), 60, 0},  // PulseAudio forgets nothing
          {pipeWire(2, 2, {{"a", 1}}), 2, 0},
          {pipeWire(2, 2, {{"b", 1}}), 2, 1},
          {pipeWire(2, 3, {{"c", 1}}), 4, 1},
          {pipeWire(2, 4, {{"c", 1}}), 60, 0},
          {pipeWire(3, 5, {{"c", 1}}), 1, 0},
          {{}, 60, 0},
          {pipeWire(4, 6, {}), 60, 0}});
}

TEST_F(SecondLookTest, ComesEverMoreRarelyWhileNoSinkIsTheDefault) {
  auto doubtful = pipeWire(1, 1, {{"a", 1}});
  doubtful.defaultSink = "@DEFAULT_SINK@";
  for (const double pause : {1.5, 3.0, 6.0, 12.0, 24.0, 48.0, 60.0, 60.0}) {
    follow({{doubtful, pause - 0.1, 0}, {doubtful, 0.1, 1}});
    ++doubtful.connection;
  }
  // A new doubt is followed soon.
  follow({{pipeWire(1, doubtful.connection, {{"a", 1}}), 120, 1}, {doubtful, 2, 1}});
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

}  // namespace
}  // namespace valdrix::desktop
