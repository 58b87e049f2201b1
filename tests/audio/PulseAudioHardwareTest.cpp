// What only an adapter to a sound server meets: servers that come, die and return, and channels.

#include <atomic>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <string>

#include <QDir>

#include "desktop/audio/PulseAudioHardware.h"
#include "desktop/session/QtRunLoop.h"
#include "media/VolumeService.h"
#include "sim/ManualRunLoop.h"
#include "tests/audio/AudioProbe.h"
#include "tests/support/SoundServer.h"
#include "tests/support/WaitFor.h"

namespace valdrix {
namespace {

using tests::SoundServer;
using tests::SoundServerKind;
using tests::waitFor;

class PulseAudioHardwareTest : public testing::TestWithParam<SoundServerKind> {
 protected:
  PulseAudioHardwareTest() { server_.adoptEnvironment(); }

  void startAdapter() { startAdapter(loop_); }
  void startAdapter(platform::RunLoop& loop) {
    endAdapter();
    hardware_ = std::make_unique<desktop::PulseAudioHardware>(loop);
    probe_ = std::make_unique<tests::AudioProbe>(*hardware_);
  }
  void endAdapter() {
    probe_.reset();
    hardware_.reset();
  }
  /// Waits for the first device, which the constructor may just have missed, and counts from there.
  bool hasDevice() {
    const bool has = waitFor([this] { return probe_->defaultDevice() != 0; });
    probe_->defaultNotices = 0;
    return has;
  }
  bool reaches(float volume) {
    return waitFor([&] { return probe_->volume(probe_->defaultDevice()) == volume; });
  }

  SoundServer server_{GetParam()};
  desktop::QtRunLoop loop_;
  sim::Trace trace_;
  sim::ManualRunLoop frozenLoop_{trace_};  ///< what waits for a timer never comes
  std::unique_ptr<desktop::PulseAudioHardware> hardware_;
  std::unique_ptr<tests::AudioProbe> probe_;
};

INSTANTIATE_TEST_SUITE_P(Servers, PulseAudioHardwareTest,
                         testing::Values(SoundServerKind::pulseAudio, SoundServerKind::pipeWire),
                         [](const auto& kind) {
                           return kind.param == SoundServerKind::pulseAudio ? "PulseAudio"
                                                                            : "PipeWire";
                         });

TEST_P(PulseAudioHardwareTest, AServerThatComesLaterIsFoundWithoutAReport) {
  startAdapter();
  EXPECT_EQ(probe_->defaultDevice(), 0U);
  VolumeService service(*hardware_);
  int reports = 0;
  service.setOnVolumeChanged([&](float, bool) { ++reports; });

  ASSERT_TRUE(server_.start({{"desk"}}));
  ASSERT_TRUE(waitFor([&] { return probe_->defaultNotices > 0; }));
  EXPECT_EQ(probe_->defaultNotices, 1);
  EXPECT_EQ(service.deviceID(), probe_->defaultDevice());
  EXPECT_EQ(service.level(), 1.0F);
  EXPECT_EQ(reports, 0) << "the indicator must not flash at login";

  ASSERT_TRUE(server_.setVolume("desk", {0.5}));
  ASSERT_TRUE(waitFor([&] { return reports > 0; }));
  EXPECT_EQ(service.level(), 0.5F);
}

TEST_P(PulseAudioHardwareTest, EveryPressCountsThroughAnotherLookAndAfterARestart) {
  ASSERT_TRUE(server_.start({{"desk"}, {"head"}}));
  startAdapter(frozenLoop_);
  const auto passes = [&](const auto& condition) {
    return waitFor([&] {
      frozenLoop_.runPending();
      return condition();
    });
  };
  ASSERT_TRUE(passes([&] { return probe_->defaultDevice() != 0; }));
  const auto desk = probe_->defaultDevice();
  VolumeService service(*hardware_);
  int reports = 0;
  service.setOnVolumeChanged([&](float, bool) { ++reports; });
  const auto hold = [&](float from) {
    for (int press = 1; press <= 4; ++press) {
      service.adjust(-0.0625F);
      EXPECT_TRUE(passes([&] { return reports == press; }));
      EXPECT_EQ(service.level(), from - 0.0625F * float(press));
    }
    reports = 0;
  };
  frozenLoop_.advance(desktop::SecondLook::afterAppearance);
  hold(1);

  server_.kill();
  // Until the loss is noticed, requests are accepted and come to nothing.
  ASSERT_TRUE(passes([&] { return !probe_->setVolume(desk, 0.75F); }));
  service.adjust(-0.5F);
  EXPECT_EQ(probe_->volume(desk), 0.75F) << "what was known last";
  ASSERT_TRUE(QDir(server_.runtimeFolder().filePath("pulse")).removeRecursively());
  ASSERT_TRUE(server_.start({{"desk"}, {"head"}}));
  ASSERT_TRUE(passes([&] { return probe_->setVolume(desk, 0.75F); }));
  hold(0.75F);
  EXPECT_EQ(server_.volumes("desk"), (std::vector{0.5, 0.5}));
  EXPECT_EQ(probe_->defaultDevice(), desk);
  EXPECT_EQ(probe_->defaultNotices, 0);
}

TEST_P(PulseAudioHardwareTest, AnotherConnectionIsMadeBesideTheOneInUse) {
  ASSERT_TRUE(server_.start({}));
  std::atomic<int> ready = 0;
  std::atomic<int> lost = 0;
  desktop::PulseConnection connection(
      {.onReady = [&](pa_context*) { ++ready; }, .onLost = [&] { ++lost; }});
  ASSERT_TRUE(waitFor([&] { return ready == 1; }));
  connection.perform([&] { connection.reconnect(); });
  EXPECT_TRUE(waitFor([&] { return ready == 2; }));
  EXPECT_EQ(lost, 0);
}

TEST_P(PulseAudioHardwareTest, TheLoudestChannelIsTheVolumeAndTheBalanceLastsThroughZero) {
  ASSERT_TRUE(server_.start({{"cinema", 6}}));
  ASSERT_TRUE(server_.setVolume("cinema", {0.2, 0.2, 0.1, 0.1, 0.4, 0.3}));
  startAdapter();
  ASSERT_TRUE(hasDevice());
  const auto cinema = probe_->defaultDevice();
  const auto isAbout = [&](float volume) {
    return waitFor([&] { return std::abs(probe_->volume(cinema).value_or(9) - volume) < 0.0001F; });
  };
  ASSERT_TRUE(isAbout(0.4F));
  for (const float volume : {0.0625F, 0.0F, 0.0001F, 0.0F, 0.8F}) {
    ASSERT_TRUE(probe_->setVolume(cinema, volume));
    ASSERT_TRUE(isAbout(volume)) << volume;
  }
  EXPECT_THAT(server_.volumes("cinema"),
              testing::Pointwise(testing::DoubleNear(0.0001), {0.4, 0.4, 0.2, 0.2, 0.8, 0.6}));

  // Another program's balance is followed.
  ASSERT_TRUE(server_.setVolume("cinema", {0.1, 0.2, 0.2, 0.2, 0.2, 0.2}));
  ASSERT_TRUE(isAbout(0.2F));
  ASSERT_TRUE(probe_->setVolume(cinema, 0.8F));
  ASSERT_TRUE(isAbout(0.8F));
  EXPECT_THAT(server_.volumes("cinema"),
              testing::Pointwise(testing::DoubleNear(0.0001), {0.4, 0.8, 0.8, 0.8, 0.8, 0.8}));
}

TEST_P(PulseAudioHardwareTest, MayEndAtAnyTimeAndHasItsValuesFromTheStart) {
  startAdapter();
  ASSERT_TRUE(server_.start({{"desk"}}));
  ASSERT_TRUE(server_.setVolume("desk", {0.5}));
  // The bound of the wait may strike on a busy machine, but hardly ten times in a row.
  for (int tries = 0; tries < 10 && probe_->volume(probe_->defaultDevice()) != 0.5F; ++tries)
    startAdapter();
  ASSERT_EQ(probe_->volume(probe_->defaultDevice()), 0.5F);
  // With requests, news and a listener's token still under way.
  Token late = hardware_->addPropertyListenerBlock(probe_->defaultDevice(),
                                                   platform::audioAddress::volume, [] { FAIL(); });
  ASSERT_TRUE(probe_->setVolume(probe_->defaultDevice(), 0.75F));
  ASSERT_TRUE(server_.setVolume("desk", {0.25}));
  endAdapter();
}

class PipeWireOnlyTest : public PulseAudioHardwareTest {};
INSTANTIATE_TEST_SUITE_P(Server, PipeWireOnlyTest, testing::Values(SoundServerKind::pipeWire));

TEST_P(PipeWireOnlyTest, ARestartOfTheSessionManagerIsNoNews) {
  ASSERT_TRUE(server_.start({{"desk"}}));
  startAdapter();
  ASSERT_TRUE(hasDevice());
  probe_->listenTo(probe_->defaultDevice());
  server_.stopSessionManager();
  ASSERT_TRUE(waitFor([&] { return server_.defaultSink() != "desk"; }));
  server_.startSessionManager();
  ASSERT_TRUE(waitFor([&] { return server_.defaultSink() == "desk"; }));
  ASSERT_TRUE(probe_->setVolume(probe_->defaultDevice(), 0.5F));
  ASSERT_TRUE(reaches(0.5F));
  EXPECT_EQ(probe_->defaultNotices, 0);
  EXPECT_EQ(probe_->volumeNotices, 1);
}

}  // namespace
}  // namespace valdrix
