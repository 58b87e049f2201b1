// What no scenario can show of a display: answers that differ from one question to the next.

#include <gtest/gtest.h>
#include <memory>

#include "media/BrightnessService.h"
#include "sim/SimDisplays.h"

namespace valdrix {
namespace {

/// Answers only the first of the two questions that one step asks.
struct ForgetfulDisplays final : platform::DisplayServices {
  struct Library final : platform::DisplayServicesLibrary {
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
  std::unique_ptr<platform::DisplayServicesLibrary> open() override {
    return std::make_unique<Library>();
  }
};

TEST(BrightnessService, TakesTheTargetWhenItCannotReadBack) {
  sim::SimDisplays displays;
  displays.plug(1, true);
  ForgetfulDisplays services;
  BrightnessService service(services, displays);
  EXPECT_EQ(service.level(), 1.25F) << "as the display says";
  displays.setFailing(true);
  service.adjust(0.0625F);
  EXPECT_EQ(service.level(), 1.25F) << "no list of displays, no change";
  displays.setFailing(false);
  service.adjust(0.0625F);
  EXPECT_EQ(service.level(), 1.0F);
}

}  // namespace
}  // namespace valdrix
