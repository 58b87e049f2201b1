// What only an adapter to a sound server meets: servers that come, die and return, and channels.

#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <string>

#include <QDir>

#include "desktop/audio/PulseAudioHardware.h"
#include "desktop/session/QtRunLoop.h"
#include "media/VolumeService.h"
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

  void startAdapter() {
    hardware_ = std::make_unique<desktop::PulseAudioHardware>(loop_);
    probe_ = std::make_unique<tests::AudioProbe>(*hardware_);
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

TEST_P(PulseAudioHardwareTest, ARestartedServerHasTheSameDevices) {
  ASSERT_TRUE(server_.start({{"desk"}, {"head"}}));
  startAdapter();
  ASSERT_TRUE(hasDevice());
  const auto desk = probe_->defaultDevice();
  VolumeService service(*hardware_);
  int reports = 0;
  service.setOnVolumeChanged([&](float, bool) { ++reports; });

  server_.kill();
  // Until the loss is noticed, requests are accepted and come to nothing.
  ASSERT_TRUE(waitFor([&] { return !probe_->setVolume(desk, 0.5F); }));
  EXPECT_EQ(probe_->volume(desk), 1.0F) << "what was known last";
  service.adjust(-0.5F);

  ASSERT_TRUE(server_.start({{"head"}, {"desk"}}));
  ASSERT_TRUE(server_.setDefaultSink("desk"));
  ASSERT_TRUE(waitFor([&] { return probe_->setVolume(desk, 0.75F); }));
  ASSERT_TRUE(reaches(0.75F));
  EXPECT_EQ(probe_->defaultDevice(), desk);
  EXPECT_EQ(probe_->defaultNotices, 0);
  EXPECT_EQ(reports, 1) << "for the new level alone";
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
}

TEST_P(PulseAudioHardwareTest, MayEndAtAnyTime) {
  startAdapter();
  probe_.reset();
  hardware_.reset();
  ASSERT_TRUE(server_.start({{"desk"}}));
  startAdapter();
  ASSERT_TRUE(hasDevice());
  // With requests, news and a listener's token still under way.
  Token late = hardware_->addPropertyListenerBlock(probe_->defaultDevice(),
                                                   platform::audioAddress::volume, [] { FAIL(); });
  ASSERT_TRUE(probe_->setVolume(probe_->defaultDevice(), 0.5F));
  ASSERT_TRUE(server_.setVolume("desk", {0.25}));
  probe_.reset();
  hardware_.reset();
  late.reset();
  EXPECT_TRUE(server_.setVolume("desk", {0.75}));
}

class PulseAudioOnlyTest : public PulseAudioHardwareTest {};
INSTANTIATE_TEST_SUITE_P(Server, PulseAudioOnlyTest, testing::Values(SoundServerKind::pulseAudio));

TEST_P(PulseAudioOnlyTest, AServerThatIsUpGivesItsValuesToTheConstructor) {
  ASSERT_TRUE(server_.start({{"desk"}}));
  ASSERT_TRUE(server_.setVolume("desk", {0.5}));
  // The bound of the wait may strike on a busy machine, but hardly ten times in a row.
  bool hasValues = false;
  for (int tries = 0; tries < 10 && !hasValues; ++tries) {
    startAdapter();
    hasValues = probe_->volume(probe_->defaultDevice()) == 0.5F;
  }
  EXPECT_TRUE(hasValues);
}

TEST_P(PulseAudioOnlyTest, TheRuntimeFolderMayComeLate) {
  QDir folder(server_.runtimeFolder().path());
  EXPECT_FALSE(folder.exists("pulse"));
  startAdapter();
  for (int round = 0; round < 2; ++round) {
    ASSERT_TRUE(server_.start({{"desk"}}));
    ASSERT_TRUE(waitFor([&] { return probe_->setVolume(probe_->defaultDevice(), 0.5F); }));
    ASSERT_TRUE(reaches(0.5F));
    server_.stop();
    ASSERT_TRUE(QDir(folder.filePath("pulse")).removeRecursively());
    ASSERT_TRUE(waitFor([&] { return !probe_->setVolume(probe_->defaultDevice(), 0.5F); }));
  }
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
