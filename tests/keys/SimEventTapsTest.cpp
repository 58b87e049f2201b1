// What the simulated keyboard can do and a real one cannot be made to.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "sim/SimAccessibility.h"
#include "sim/SimEventTaps.h"

namespace valdrix {
namespace {

using platform::InputEvent;
using platform::TapResult;
using testing::ElementsAre;

class SimEventTapsTest : public testing::Test {
 protected:
  std::unique_ptr<platform::EventTap> makeTap() {
    return taps_.createTap(
        platform::TapLocation::hid, platform::TapPlacement::headInsert,
        platform::TapOptions::activeFilter, 1U << platform::systemDefined::eventType,
        {.handleEvent = [this](std::uint32_t type, const InputEvent*) { return handle(type); },
         .wouldSwallow = nullptr});
  }
  TapResult handle(std::uint32_t type) {
    if (type == platform::systemDefined::eventType) return TapResult::swallow;
    notices_.push_back(type);
    if (enablesAgain_) tap_->enable(true);
    return TapResult::pass;
  }
  std::vector<std::string> trace() {
    std::vector<std::string> lines;
    for (; traced_ < trace_.lines().size(); ++traced_)
      lines.push_back(trace_.lines()[traced_].text);
    return lines;
  }

  sim::Trace trace_;
  sim::SimAccessibility accessibility_{trace_};
  sim::SimEventTaps taps_{trace_, accessibility_};
  std::unique_ptr<platform::EventTap> tap_ = makeTap();
  Token source_ = tap_->addToMainRunLoop();
  std::vector<std::uint32_t> notices_;
  bool enablesAgain_ = false;

 private:
  std::size_t traced_ = 0;
};

TEST_F(SimEventTapsTest, ADisabledTapIsToldAndTheDesktopHasTheKeysMeanwhile) {
  tap_->enable(true);
  taps_.disableTaps(platform::tapDisabledByTimeout);
  EXPECT_FALSE(tap_->isEnabled());
  EXPECT_EQ(taps_.press(0), TapResult::pass);
  EXPECT_EQ(taps_.release(0), TapResult::pass);
  enablesAgain_ = true;
  tap_->enable(true);
  taps_.disableTaps(platform::tapDisabledByUserInput);
  EXPECT_EQ(taps_.press(7, platform::modifierFlag::shift), TapResult::swallow);
  EXPECT_THAT(notices_,
              ElementsAre(platform::tapDisabledByTimeout, platform::tapDisabledByUserInput));
  EXPECT_THAT(trace(), ElementsAre("tap created", "tap connected", "tap enabled", "tap disabled",
                                   "tap told: disabled by timeout", "desktop gets volumeUp down",
                                   "desktop gets volumeUp up", "tap enabled", "tap disabled",
                                   "tap told: disabled by user input", "tap enabled",
                                   "tap swallows shift+mute down"));
}

TEST_F(SimEventTapsTest, CreationMayFailAlthoughTrusted) {
  taps_.setCreationFails(true);
  EXPECT_TRUE(accessibility_.isProcessTrusted());
  EXPECT_FALSE(makeTap());
  taps_.setCreationFails(false);
  EXPECT_TRUE(makeTap());
}

TEST_F(SimEventTapsTest, OddEventsAreTold) {
  tap_.reset();
  const auto before = trace();
  const InputEvent odd{3, 0, 0};
  const InputEvent unknownKey{8, 4 << 16 | 0x0A << 8, 0};
  taps_.send(10, nullptr);
  taps_.send(14, nullptr);
  taps_.send(14, &odd);
  taps_.send(14, &unknownKey);
  EXPECT_THAT(trace(), ElementsAre("desktop gets event of type 10", "desktop gets unreadable event",
                                   "desktop gets event of subtype 3", "desktop gets key 4 down"));
}

}  // namespace
}  // namespace valdrix
