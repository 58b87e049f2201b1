#pragma once

#include <gtest/gtest.h>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "platform/EventTaps.h"
#include "tests/keys/X11KeyDesk.h"

namespace valdrix::tests {

/// A tap that notes the presses with no modifier but Shift, as "shift+volumeUp repeat", and
/// swallows them unless they are among those to be passed on. Releases mean nothing to the program,
/// and some taps never see them.
class TapTest : public testing::Test {
 protected:
  [[nodiscard]] virtual platform::EventTaps& taps() = 0;
  /// Taps end before what they were made by.
  void TearDown() override {
    source_.reset();
    tap_.reset();
  }

  /// Neither enabled nor connected.
  std::unique_ptr<platform::EventTap> makeTap() {
    return taps().createTap(
        platform::TapLocation::hid, platform::TapPlacement::headInsert,
        platform::TapOptions::activeFilter, 1U << platform::systemDefined::eventType,
        {.handleEvent = [this](std::uint32_t type,
                               const auto* event) { return handle(type, *event); },
         .wouldSwallow = [this](std::uint32_t code) { return !passed_.contains(code); }});
  }
  void install() {
    tap_ = makeTap();
    ASSERT_TRUE(tap_);
    source_ = tap_->addToMainRunLoop();
    tap_->enable(true);
  }
  /// Since the last call.
  std::vector<std::string> tapSaw() { return std::exchange(seen_, {}); }

  std::unique_ptr<platform::EventTap> tap_;
  Token source_;
  std::set<std::uint32_t> passed_;
  std::vector<std::string> seen_;

 private:
  platform::TapResult handle(std::uint32_t type, const platform::InputEvent& event) {
    namespace flag = platform::modifierFlag;
    EXPECT_EQ(type, platform::systemDefined::eventType);
    EXPECT_EQ(event.subtype, platform::systemDefined::auxiliaryControlButtons);
    if (event.modifierFlags & (flag::control | flag::option | flag::command))
      return platform::TapResult::pass;
    const auto data = static_cast<std::uint32_t>(event.data1);
    const auto code = data >> 16;
    const auto state = data >> 8 & 0xFF;
    EXPECT_TRUE(state == 0x0A || state == 0x0B) << state;
    if (state == 0x0A)
      seen_.push_back(((event.modifierFlags & flag::shift) ? "shift+" : "") + mediaKeyName(code) +
                      ((data & 1U) ? " repeat" : ""));
    return passed_.contains(code) ? platform::TapResult::pass : platform::TapResult::swallow;
  }
};

}  // namespace valdrix::tests
