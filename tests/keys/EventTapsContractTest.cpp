// What every keyboard with taps does, on the simulated desktop and on a real X server.

#include <algorithm>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "desktop/keys/MediaKeyTaps.h"
#include "desktop/session/QtRunLoop.h"
#include "desktop/x11/X11Keys.h"
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

class X11Desk {
 public:
  X11Desk() {
    taps_.setOnPrompt([this] { ++promptCount_; });
  }
  platform::EventTaps& taps() { return taps_; }
  platform::Accessibility& accessibility() { return taps_; }
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
    for (const auto& [key, word] : platform::mediaKeys)
      EXPECT_TRUE(other_->grab(static_cast<std::uint32_t>(key)));
  }
  void giveKeysBack() {
    other_->ungrabAll();
    EXPECT_TRUE(desk_.await([this] { return taps_.isProcessTrusted(); }));
  }
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
  desktop::MediaKeyTaps taps_{loop_, {[this](desktop::KeySource::Events events) {
                                return std::make_unique<desktop::X11Keys>(
                                    desk_.display().name(), loop_, [](auto) { return true; },
                                    std::move(events));
                              }}};
  int promptCount_ = 0;
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

using Worlds = testing::Types<SimulatedKeys, X11Desk>;
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
    EXPECT_THAT(this->tapSaw(), ElementsAre("volumeUp"));
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
    EXPECT_THAT(this->tapSaw(), ElementsAre(name, "shift+" + name));
  }
}

TYPED_TEST(EventTapsContract, AHeldKeyRepeatsUntilItIsReleased) {
  this->install();
  this->world_.hold(1, [this] { return this->seen_.size() >= 3; });
  this->world_.release(1);
  this->tapKey(1);
  EXPECT_THAT(this->desktopGot(), IsEmpty());
  auto seen = this->tapSaw();
  EXPECT_GE(std::erase(seen, "volumeDown repeat"), 2U);
  EXPECT_THAT(seen, ElementsAre("volumeDown", "volumeDown"));
}

TYPED_TEST(EventTapsContract, PassedKeysReachTheDesktopWhole) {
  this->install();
  for (const auto flags :
       {flag::control, flag::option, flag::command, flag::command | flag::shift}) {
    this->tapKey(1, flags);
    EXPECT_THAT(this->desktopGot(), ElementsAre("volumeDown down", "volumeDown up")) << flags;
  }
}

TYPED_TEST(EventTapsContract, TrustComesAndGoesWithTheKeys) {
  EXPECT_TRUE(this->world_.accessibility().isProcessTrustedWithOptions(true));
  this->world_.takeKeysAway();
  // Where trust is a permission there is no tap without it.
  auto tap = this->makeTap();
  auto source = tap ? tap->addToMainRunLoop() : Token();
  if (tap) tap->enable(true);
  EXPECT_FALSE(this->world_.accessibility().isProcessTrustedWithOptions(false));
  EXPECT_EQ(this->world_.promptCount(), 0);
  EXPECT_FALSE(this->world_.accessibility().isProcessTrustedWithOptions(true));
  EXPECT_EQ(this->world_.promptCount(), 1);
  this->world_.giveKeysBack();
  EXPECT_TRUE(this->world_.accessibility().isProcessTrusted());
  source.reset();
  tap.reset();
  this->install();
  this->tapKey(0);
  EXPECT_THAT(this->desktopGot(), IsEmpty());
}

}  // namespace
}  // namespace valdrix
