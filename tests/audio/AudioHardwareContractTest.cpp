// What every audio adapter does, on the simulated devices and on both sound servers.

#include <array>
#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "desktop/audio/PulseAudioHardware.h"
#include "desktop/session/QtRunLoop.h"
#include "sim/ManualRunLoop.h"
#include "sim/SimAudioHardware.h"
#include "tests/audio/AudioProbe.h"
#include "tests/support/SoundServer.h"
#include "tests/support/WaitFor.h"

namespace valdrix {
namespace {

using platform::AudioObjectID;
namespace audioAddress = platform::audioAddress;

/// A desktop with the devices "desk" (the default) and "head", both at full volume, and an adapter
/// that has seen them. What else can be done to it, another program does.
class SimulatedWorld {
 public:
  SimulatedWorld() { EXPECT_TRUE(addSink({"desk"}) && addSink({"head"})); }
  platform::AudioHardware& hardware() { return hardware_; }
  bool runUntil(const std::function<bool()>& condition) {
    for (int step = 0; step < 1000 && !condition(); ++step) loop_.advance(0.01);
    return condition();
  }
  bool addSink(const tests::SoundServer::Sink& sink) {
    return hardware_.addDevice(sink.name, 1.0F) != 0;
  }
  bool removeSink(const char* name) {
    hardware_.removeDevice(device(name));
    return true;
  }
  bool setDefaultSink(const char* name) {
    hardware_.setDefaultDevice(device(name));
    return true;
  }
  bool setVolume(const char* name, const std::vector<float>& volumes) {
    hardware_.changeVolume(device(name), volumes[0]);
    return true;
  }
  bool setMuted(const char* name, bool isMuted) {
    hardware_.changeMute(device(name), isMuted);
    return true;
  }
  void pause() { hardware_.setAnswerDelay(std::numeric_limits<double>::infinity()); }
  void resume() { hardware_.setAnswerDelay(0.05); }

 private:
  AudioObjectID device(const char* name) { return hardware_.device(name); }

  sim::Trace trace_;
  sim::ManualRunLoop loop_{trace_};
  sim::SimAudioHardware hardware_{trace_, loop_};
};

template <tests::SoundServerKind kind>
class ServerWorld : public tests::SoundServer {
 public:
  ServerWorld() : SoundServer(kind) {
    adoptEnvironment();
    EXPECT_TRUE(start({{"desk"}, {"head"}}));
    hardware_ = std::make_unique<desktop::PulseAudioHardware>(loop_);
    EXPECT_TRUE(runUntil([&] { return tests::AudioProbe(*hardware_).defaultDevice() != 0; }));
  }
  platform::AudioHardware& hardware() { return *hardware_; }
  bool runUntil(const std::function<bool()>& condition) { return tests::waitFor(condition); }

 private:
  desktop::QtRunLoop loop_;
  std::unique_ptr<desktop::PulseAudioHardware> hardware_;
};

template <class W>
class AudioHardwareContract : public testing::Test {
 protected:
  bool runUntil(const std::function<bool()>& condition) { return world_.runUntil(condition); }
  /// Has the user switch to "head" and back and waits until that is told: what was going to be told
  /// before has been told by then.
  void passTurn() {
    const int before = probe_.defaultNotices;
    ASSERT_TRUE(world_.setDefaultSink("head"));
    ASSERT_TRUE(runUntil([&] { return probe_.defaultNotices > before; }));
    EXPECT_NE(probe_.defaultDevice(), desk_);
    ASSERT_TRUE(world_.setDefaultSink("desk"));
    ASSERT_TRUE(runUntil([&] { return probe_.defaultNotices > before + 1; }));
    EXPECT_EQ(probe_.defaultDevice(), desk_);
  }

  W world_;
  tests::AudioProbe probe_{world_.hardware()};
  const AudioObjectID desk_ = probe_.defaultDevice();
};

using Worlds = testing::Types<SimulatedWorld, ServerWorld<tests::SoundServerKind::pulseAudio>,
                              ServerWorld<tests::SoundServerKind::pipeWire>>;
TYPED_TEST_SUITE(AudioHardwareContract, Worlds);

TYPED_TEST(AudioHardwareContract, WritesTakeEffectLaterAndAreHeardOf) {
  auto& probe = this->probe_;
  const auto desk = this->desk_;
  EXPECT_GT(desk, platform::audioSystemObject);
  probe.listenTo(desk);
  EXPECT_EQ(probe.volume(desk), 1.0F);
  ASSERT_TRUE(probe.setVolume(desk, 0.4375F));
  ASSERT_TRUE(probe.setMuted(desk, true));
  EXPECT_EQ(probe.volume(desk), 1.0F) << "a write is a request";
  ASSERT_TRUE(this->runUntil([&] { return probe.volumeNotices > 0 && probe.muteNotices > 0; }));
  EXPECT_NEAR(probe.volume(desk).value_or(-1), 0.4375F, 0.0001F);
  EXPECT_EQ(probe.isMuted(desk), true);

  // What is out of range is held to it.
  for (const auto& [written, read] : {std::pair{-0.5F, 0.0F}, {1.5F, 1.0F}, {0.0F, 0.0F}}) {
    ASSERT_TRUE(probe.setVolume(desk, written));
    EXPECT_TRUE(this->runUntil([&] { return probe.volume(desk) == read; })) << written;
  }
  EXPECT_EQ(probe.isMuted(desk), true);
  EXPECT_EQ(probe.defaultNotices, 0);
}

TYPED_TEST(AudioHardwareContract, WhatCannotBeDoneFailsAndChangesNothing) {
  auto& hardware = this->world_.hardware();
  auto& probe = this->probe_;
  const auto desk = this->desk_;
  EXPECT_FALSE(probe.setVolume(desk, std::nanf("")));
  for (const AudioObjectID object : {0U, platform::audioSystemObject, 4711U}) {
    EXPECT_EQ(probe.volume(object), std::nullopt) << object;
    EXPECT_EQ(probe.isMuted(object), std::nullopt) << object;
    EXPECT_FALSE(probe.setVolume(object, 0.5F)) << object;
    EXPECT_FALSE(probe.setMuted(object, true)) << object;
  }
  std::uint32_t number = 77;
  float level = 77;
  EXPECT_NE(hardware.getPropertyData(desk, audioAddress::volume, number), 0);
  EXPECT_NE(hardware.getPropertyData(desk, audioAddress::mute, level), 0);
  EXPECT_NE(hardware.getPropertyData(desk, audioAddress::defaultOutputDevice, number), 0);
  EXPECT_EQ(number, 77U);
  EXPECT_EQ(level, 77.0F);
  const Token onNobody =
      hardware.addPropertyListenerBlock(4711, audioAddress::volume, [] { FAIL(); });
  this->passTurn();
  EXPECT_EQ(probe.volume(desk), 1.0F);
}

TYPED_TEST(AudioHardwareContract, AnotherProgramsChangesAreHeardOf) {
  auto& probe = this->probe_;
  const auto desk = this->desk_;
  probe.listenTo(desk);
  ASSERT_TRUE(this->world_.setVolume("desk", {0.25F}));
  ASSERT_TRUE(this->runUntil([&] { return probe.volumeNotices > 0; }));
  EXPECT_NEAR(probe.volume(desk).value_or(-1), 0.25F, 0.0001F);
  ASSERT_TRUE(this->world_.setMuted("desk", true));
  ASSERT_TRUE(this->runUntil([&] { return probe.muteNotices > 0; }));
  EXPECT_EQ(probe.isMuted(desk), true);
  ASSERT_TRUE(this->world_.setVolume("desk", {1.5F}));
  EXPECT_TRUE(this->runUntil([&] { return probe.volume(desk) > 1.49F; })) << "amplified";

  ASSERT_TRUE(probe.setVolume(desk, 1));
  ASSERT_TRUE(probe.setMuted(desk, false));
  EXPECT_TRUE(this->runUntil([&] { return probe.isMuted(desk) == false; }));
  EXPECT_GT(probe.volume(desk), 1.49F) << "as loud as can be is no wish for less";
  EXPECT_EQ(probe.defaultNotices, 1) << "so that whoever asked hears of it";
}

TYPED_TEST(AudioHardwareContract, OnlyWhatChangedIsTold) {
  auto& probe = this->probe_;
  probe.listenTo(this->desk_);
  ASSERT_TRUE(this->world_.setVolume("head", {0.5F}));
  ASSERT_TRUE(this->world_.setMuted("head", true));
  const std::vector<std::string> crowd{"a", "b", "c", "d", "e", "f", "g", "h", "i", "j"};
  for (const auto& name : crowd) ASSERT_TRUE(this->world_.addSink({name}));
  for (const auto& name : crowd) ASSERT_TRUE(this->world_.removeSink(name.c_str()));
  ASSERT_TRUE(probe.setVolume(this->desk_, 1));
  ASSERT_TRUE(probe.setMuted(this->desk_, false));
  this->passTurn();
  EXPECT_EQ(probe.volumeNotices, 0);
  EXPECT_EQ(probe.muteNotices, 0);
  EXPECT_EQ(probe.defaultNotices, 2) << "one for each change of the default in passTurn";
}

TYPED_TEST(AudioHardwareContract, AServerThatHangsTakesTheLastOfWhatWasWritten) {
  auto& probe = this->probe_;
  float known = 1;
  // The last one may change nothing any more, and then no news comes of it.
  for (const auto& writes : {std::array{0.75F, 0.5F, 0.25F}, {0.75F, 0.5F, 0.75F}}) {
    this->world_.pause();
    for (const float volume : writes) {
      ASSERT_TRUE(probe.setVolume(this->desk_, volume));
      EXPECT_TRUE(this->runUntil([turn = false]() mutable { return std::exchange(turn, true); }));
      EXPECT_EQ(probe.volume(this->desk_), known);
    }
    this->world_.resume();
    known = writes.back();
    EXPECT_TRUE(this->runUntil([&] { return probe.volume(this->desk_) == known; }));
  }
  this->passTurn();
  EXPECT_EQ(probe.volume(this->desk_), known);
}

TYPED_TEST(AudioHardwareContract, TheDefaultDeviceGoesAndComesBack) {
  auto& probe = this->probe_;
  probe.listenTo(this->desk_);
  int changes = 0;
  const auto nextDefault = [&] {
    EXPECT_TRUE(this->runUntil([&] { return probe.defaultNotices > changes; }));
    EXPECT_EQ(probe.defaultNotices, ++changes);
    return probe.defaultDevice();
  };
  ASSERT_TRUE(this->world_.removeSink("desk"));
  const auto head = nextDefault();
  EXPECT_GT(head, platform::audioSystemObject);
  EXPECT_NE(head, this->desk_);
  EXPECT_TRUE(this->runUntil([&] { return !probe.volume(this->desk_); })) << "it is not there";
  EXPECT_FALSE(probe.isMuted(this->desk_));
  EXPECT_FALSE(probe.setVolume(this->desk_, 0.5F));
  EXPECT_EQ(probe.volumeNotices + probe.muteNotices, 0) << "going away is no volume";

  ASSERT_TRUE(this->world_.removeSink("head"));
  EXPECT_EQ(nextDefault(), 0U);
  EXPECT_FALSE(probe.setVolume(head, 0.5F));

  ASSERT_TRUE(this->world_.addSink({"new"}));
  const auto added = nextDefault();
  EXPECT_TRUE(added != 0 && added != this->desk_ && added != head);
  EXPECT_EQ(probe.volume(added), 1.0F);
}

}  // namespace
}  // namespace valdrix
