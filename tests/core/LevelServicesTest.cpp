// The rules of the level services that no key press shows.

#include <gtest/gtest.h>
#include <memory>
#include <utility>
#include <vector>

#include "media/BrightnessService.h"
#include "media/VolumeService.h"
#include "observation/Observer.h"
#include "sim/ManualRunLoop.h"
#include "sim/SimAudioHardware.h"
#include "sim/SimDisplayServices.h"

namespace valdrix {
namespace {

TEST(Volume, WhatCannotBeReadCountsAsSilentAndUnmuted) {
  sim::Trace trace;
  sim::ManualRunLoop runLoop(trace);
  sim::SimAudioHardware audio(trace, runLoop);
  const auto device = audio.addDevice("speakers", 0.5F, true);
  const VolumeService service(audio);
  const auto afterNotice = [&](bool isFailing) {
    audio.setReadsFail(isFailing);
    audio.notify(device, platform::audioAddress::volume);
    runLoop.runPending();
    return std::pair(service.level(), service.isMuted());
  };
  EXPECT_EQ(afterNotice(true), std::pair(0.0F, false));
  EXPECT_EQ(afterNotice(false), std::pair(0.5F, true));
}

class Brightness : public testing::Test {
 protected:
  void start() {
    service = std::make_unique<BrightnessService>(displayServices, displays);
    service->setOnBrightnessChanged([this](float level) { reports.push_back(level); });
  }

  sim::Trace trace;
  sim::SimDisplays displays;
  sim::SimDisplayServices displayServices{displays, trace};
  std::vector<float> reports;
  std::unique_ptr<BrightnessService> service;
};

TEST_F(Brightness, ControlsTheFirstBuiltInDisplay) {
  displays.plug(1, false);
  displays.plug(2, true);
  displays.plug(3, true);
  displayServices.backlight(2).level = 0.25F;
  start();
  EXPECT_TRUE(service->isAvailable());
  EXPECT_EQ(service->level(), 0.25F);
  service->adjust(0.5F);
  EXPECT_EQ(displayServices.backlight(2).level, 0.75F);
  EXPECT_EQ(displayServices.backlight(1).level, 0.5F);
  EXPECT_EQ(reports, std::vector<float>{0.75F});
  displays.setFailing(true);
  service->adjust(0.5F);
  EXPECT_EQ(reports.size(), 1U) << "no list of displays, no change";
  EXPECT_TRUE(service->isAvailable());
}

TEST_F(Brightness, IsOutOfReachWhenAnythingIsMissing) {
  displays.plug(1, true);
  using Installation = sim::SimDisplayServices::Installation;
  for (bool Installation::*part :
       {&Installation::hasLibrary, &Installation::hasCanChangeBrightness,
        &Installation::hasGetBrightness, &Installation::hasSetBrightness}) {
    displayServices.installation() = {};
    displayServices.installation().*part = false;
    start();
    EXPECT_FALSE(service->isAvailable());
    service->adjust(0.0625F);
  }
  displayServices.installation() = {};
  displayServices.backlight(1).canChange = false;
  start();
  EXPECT_FALSE(service->isAvailable());
  EXPECT_TRUE(reports.empty());
}

TEST_F(Brightness, TakesTheTargetWhenItCannotReadBack) {
  /// A display that answers only the first of two questions.
  struct Library : platform::DisplayServicesLibrary {
    CanChangeBrightness canChangeBrightness() override {
      return [](platform::DisplayID) { return true; };
    }
    GetBrightness getBrightness() override {
      return [this](platform::DisplayID, float& level) {
        if (reads++ == 2) return -1;
        level = 1.25F;
        return 0;
      };
    }
    SetBrightness setBrightness() override {
      return [](platform::DisplayID, float level) { return level == 1.0F ? 0 : -1; };
    }
    int reads = 0;
  };
  struct Services : platform::DisplayServices {
    std::unique_ptr<platform::DisplayServicesLibrary> open() override {
      return std::make_unique<Library>();
    }
  } services;
  displays.plug(1, true);
  service = std::make_unique<BrightnessService>(services, displays);
  EXPECT_EQ(service->level(), 1.25F) << "as the display says";
  service->adjust(0.0625F);
  EXPECT_EQ(service->level(), 1.0F);
}

}  // namespace
}  // namespace valdrix
