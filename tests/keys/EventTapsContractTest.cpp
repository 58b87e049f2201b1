// What every keyboard with taps does, on the simulated desktop and on a real X server.

#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "desktop/session/QtRunLoop.h"
#include "desktop/x11/X11Accessibility.h"
#include "desktop/x11/X11EventTaps.h"
#include "sim/SimAccessibility.h"
#include "sim/SimEventTaps.h"
#include "tests/keys/TapTest.h"

namespace valdrix {
namespace {

using platform::TapResult;
using testing::ElementsAre;
using testing::IsEmpty;
namespace flag = platform::modifierFlag;

class SimulatedKeys {
 public:
  platform::EventTaps& taps() { return taps_; }
  platform::Accessibility& accessibility() { return accessibility_; }
  void press(std::uint32_t code, std::uint32_t flags = 0) {
    note(taps_.press(code, flags), code, " down");
  }
  void hold(std::uint32_t code, const std::function<bool()>& until) {
    while (!until()) press(code);
  }
  void release(std::uint32_t code, std::uint32_t flags = 0) {
    note(taps_.release(code, flags), code, " up");
  }
  std::vector<std::string> desktopGot() { return std::exchange(got_, {}); }
  void takeKeysAway() { accessibility_.setTrusted(false); }
  void giveKeysBack() { accessibility_.setTrusted(true); }
  int promptCount() { return accessibility_.hasPrompted() ? 1 : 0; }

 private:
  void note(TapResult result, std::uint32_t code, const char* what) {
    if (result == TapResult::pass) got_.push_back(tests::mediaKeyName(code) + what);
  }

  sim::Trace trace_;
  sim::SimAccessibility accessibility_{trace_};
  sim::SimEventTaps taps_{trace_, accessibility_};
  std::vector<std::string> got_;
};

class X11Keys {
 public:
  platform::EventTaps& taps() { return taps_; }
  platform::Accessibility& accessibility() { return accessibility_; }
  void press(std::uint32_t code, std::uint32_t flags = 0) {
    for (const auto key : modifierKeys(flags)) desk_.pressCode(key);
    desk_.press(code);
  }
  /// Presses it and waits for the server's own repeats.
  void hold(std::uint32_t code, const std::function<bool()>& until) {
    press(code);
    EXPECT_TRUE(desk_.await(until));
  }
  void release(std::uint32_t code, std::uint32_t flags = 0) {
    desk_.release(code);
    for (const auto key : modifierKeys(flags)) desk_.releaseCode(key);
  }
  std::vector<std::string> desktopGot() { return desk_.windowGot(); }
  void takeKeysAway() {
    other_.emplace(desk_);
    for (const auto code : desktop::mediaKeyCodes) EXPECT_TRUE(other_->grab(code));
  }
  void giveKeysBack() { other_->ungrabAll(); }
  int promptCount() { return promptCount_; }

 private:
  static std::vector<xcb_keycode_t> modifierKeys(std::uint32_t flags) {
    std::vector<xcb_keycode_t> keys;
    if (flags & flag::shift) keys.push_back(50);
    if (flags & flag::control) keys.push_back(37);
    if (flags & flag::option) keys.push_back(64);
    if (flags & flag::command) keys.push_back(133);
    return keys;
  }

  tests::X11KeyDesk desk_;
  desktop::QtRunLoop loop_;
  desktop::X11EventTaps taps_{loop_, desk_.display().name()};
  int promptCount_ = 0;
  desktop::X11Accessibility accessibility_{taps_, [this] { ++promptCount_; }};
  std::optional<tests::OtherGrabber> other_;
};

template <class World>
class EventTapsContract : public tests::TapTest {
 protected:
  platform::EventTaps& taps() override { return world_.taps(); }
  void tapKey(std::uint32_t code, std::uint32_t flags = 0) {
    world_.press(code, flags);
    world_.release(code, flags);
  }
  std::vector<std::string> desktopGot() { return world_.desktopGot(); }

  World world_;
};

using Worlds = testing::Types<SimulatedKeys, X11Keys>;
TYPED_TEST_SUITE(EventTapsContract, Worlds);

TYPED_TEST(EventTapsContract, ATapWorksWhileItIsEnabledAndConnected) {
  auto tap = this->makeTap();
  ASSERT_TRUE(tap);
  EXPECT_FALSE(tap->isEnabled());
  const auto expectDesktop = [&](const char* when) {
    SCOPED_TRACE(when);
    this->tapKey(0);
    EXPECT_THAT(this->desktopGot(), ElementsAre("volumeUp down", "volumeUp up"));
    EXPECT_THAT(this->tapSaw(), IsEmpty());
  };
  const auto expectTap = [&](const char* when) {
    SCOPED_TRACE(when);
    this->tapKey(0);
    EXPECT_THAT(this->desktopGot(), IsEmpty());
    EXPECT_THAT(this->tapSaw(), ElementsAre("volumeUp down", "volumeUp up"));
  };
  expectDesktop("created");
  auto source = tap->addToMainRunLoop();
  expectDesktop("connected");
  tap->enable(true);
  expectTap("enabled");
  tap->enable(false);
  expectDesktop("disabled");
  tap->enable(true);
  expectTap("enabled again");
  source.reset();
  expectDesktop("disconnected");
  source = tap->addToMainRunLoop();
  expectTap("connected again");
  tap.reset();
  expectDesktop("destroyed");
}

TYPED_TEST(EventTapsContract, SwallowedKeysNeverReachTheDesktop) {
  this->install();
  for (const std::uint32_t code : {0U, 1U, 2U, 3U, 7U}) {
    const auto name = tests::mediaKeyName(code);
    this->tapKey(code);
    this->tapKey(code, flag::shift);
    EXPECT_THAT(this->desktopGot(), IsEmpty()) << name;
    EXPECT_THAT(this->tapSaw(), ElementsAre(name + " down", name + " up", "shift+" + name + " down",
                                            "shift+" + name + " up"));
  }
}

TYPED_TEST(EventTapsContract, AHeldKeyRepeatsUntilItIsReleased) {
  this->install();
  this->world_.hold(1, [this] { return this->seen_.size() >= 3; });
  this->world_.release(1);
  this->tapKey(1);
  EXPECT_THAT(this->desktopGot(), IsEmpty());
  auto seen = this->tapSaw();
  std::erase(seen, "volumeDown down repeat");
  EXPECT_THAT(seen,
              ElementsAre("volumeDown down", "volumeDown up", "volumeDown down", "volumeDown up"));
}

TYPED_TEST(EventTapsContract, PassedKeysReachTheDesktopWhole) {
  this->install();
  for (const auto flags :
       {flag::control, flag::option, flag::command, flag::command | flag::shift}) {
    this->tapKey(1, flags);
    EXPECT_THAT(this->desktopGot(), ElementsAre("volumeDown down", "volumeDown up")) << flags;
  }
  // Without asking the tap anew which keys it wants.
  this->passed_ = {3};
  this->tapKey(3);
  EXPECT_THAT(this->desktopGot(), ElementsAre("brightnessDown down", "brightnessDown up"));
  this->passed_ = {};
  this->tapKey(3);
  EXPECT_THAT(this->desktopGot(), IsEmpty());
}

TYPED_TEST(EventTapsContract, TrustIsWhetherATapCanBeInstalledNow) {
  EXPECT_TRUE(this->world_.accessibility().isProcessTrusted());
  EXPECT_TRUE(this->world_.accessibility().isProcessTrustedWithOptions(true));
  this->world_.takeKeysAway();
  EXPECT_FALSE(this->world_.accessibility().isProcessTrusted());
  EXPECT_FALSE(this->makeTap());
  EXPECT_FALSE(this->world_.accessibility().isProcessTrustedWithOptions(false));
  EXPECT_EQ(this->world_.promptCount(), 0);
  EXPECT_FALSE(this->world_.accessibility().isProcessTrustedWithOptions(true));
  EXPECT_FALSE(this->world_.accessibility().isProcessTrustedWithOptions(true));
  EXPECT_EQ(this->world_.promptCount(), 1) << "told once";
  this->world_.giveKeysBack();
  EXPECT_TRUE(this->world_.accessibility().isProcessTrusted());
  this->install();
  this->tapKey(0);
  EXPECT_THAT(this->desktopGot(), IsEmpty());
}

}  // namespace
}  // namespace valdrix
