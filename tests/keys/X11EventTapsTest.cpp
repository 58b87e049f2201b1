// What only a real X server can do to the media keys.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>
#include <xkbcommon/xkbcommon-keysyms.h>

#include "desktop/x11/X11EventTaps.h"
#include "desktop/x11/XkbSetup.h"
#include "sim/ManualRunLoop.h"
#include "tests/keys/TapTest.h"

namespace valdrix {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr xcb_keycode_t shiftKey = 50;
constexpr xcb_keycode_t controlKey = 37;
constexpr xcb_keycode_t superKey = 133;
constexpr xcb_keycode_t spareKey = 150;  // a key that the keymap gives no media symbol

class X11EventTapsTest : public tests::TapTest {
 protected:
  X11EventTapsTest() {
    desk_.setPump([this] { loop_.runPending(); });
  }

  platform::EventTaps& taps() override { return *taps_; }
  bool awaitSeen(std::size_t count) {
    return desk_.await([&] { return seen_.size() >= count; });
  }
  /// Lets the taps notice a keymap that has changed.
  void settle() {
    if (!tap_) return;
    ASSERT_TRUE(desk_.await([&] { return loop_.nextTimer() < loop_.now() + 1; }))
        << "the change was not noticed";
    EXPECT_THAT(desk_.windowGot(), IsEmpty());
    loop_.advance(0.1);
  }
  void changeKeymap(const std::vector<std::string>& expressions) {
    std::vector<std::string> arguments = {"xmodmap"};
    for (const auto& expression : expressions) {
      arguments.insert(arguments.end(), {"-e", expression});
    }
    ASSERT_TRUE(desk_.changeKeymap(arguments));
    settle();
  }
  /// A tap swallows this key, and the window never hears of it.
  void expectOurs(std::uint32_t code, const std::string& when) {
    desk_.tap(code);
    EXPECT_THAT(desk_.windowGot(), IsEmpty()) << when;
    const auto name = tests::mediaKeyName(code);
    EXPECT_THAT(tapSaw(), ElementsAre(name + " down", name + " up")) << when;
  }
  void expectTheDesktops(std::uint32_t code, const std::string& when) {
    desk_.tap(code);
    const auto name = tests::mediaKeyName(code);
    EXPECT_THAT(desk_.windowGot(), ElementsAre(name + " down", name + " up")) << when;
    EXPECT_THAT(tapSaw(), IsEmpty()) << when;
  }

  tests::X11KeyDesk desk_;
  sim::Trace trace_;
  sim::ManualRunLoop loop_{trace_};
  std::unique_ptr<desktop::X11EventTaps> taps_ =
      std::make_unique<desktop::X11EventTaps>(loop_, desk_.display().name());
};

TEST_F(X11EventTapsTest, LocksDoNotMatterWhereverTheKeymapPutsThem) {
  install();
  const std::vector<std::vector<std::string>> keymaps = {
      {},
      // Num Lock away from its usual place, and a Scroll Lock that is a modifier.
      {"clear mod2", "clear mod3", "add mod3 = Num_Lock", "add mod2 = Scroll_Lock"},
      // Alt where Num Lock usually is: no lock any more.
      {"clear mod1", "clear mod2", "clear mod3", "add mod1 = Num_Lock", "add mod2 = Alt_L"},
  };
  for (const auto& keymap : keymaps) {
    if (!keymap.empty()) changeKeymap(keymap);
    for (const auto lock : {XKB_KEY_Caps_Lock, XKB_KEY_Num_Lock, XKB_KEY_Scroll_Lock}) {
      const auto key = desk_.keycodeOf(static_cast<xcb_keysym_t>(lock));
      desk_.tapCode(key);
      expectOurs(0, "locked");
      desk_.pressCode(shiftKey);
      desk_.tap(1);
      desk_.releaseCode(shiftKey);
      EXPECT_THAT(desk_.windowGot(), IsEmpty());
      EXPECT_THAT(tapSaw(), ElementsAre("shift+volumeDown down", "shift+volumeDown up"));
      for (const auto other : {controlKey, superKey, desk_.keycodeOf(XKB_KEY_Alt_L)}) {
        desk_.pressCode(other);
        desk_.tap(7);
        desk_.releaseCode(other);
        EXPECT_THAT(desk_.windowGot(), ElementsAre("mute down", "mute up")) << int{other};
      }
      EXPECT_THAT(tapSaw(), IsEmpty());
      desk_.tapCode(key);
    }
  }
}

TEST_F(X11EventTapsTest, NoPressIsMissedHoweverQuick) {
  install();
  const std::uint32_t codes[] = {0, 1, 2, 3, 7};
  for (std::size_t i = 0; i < 200; ++i) desk_.tap(codes[i % 5]);
  EXPECT_THAT(desk_.windowGot(), IsEmpty());
  std::map<std::string, int> counts;
  for (const auto& event : tapSaw()) ++counts[event];
  EXPECT_THAT(counts, SizeIs(10)) << "no repeats";
  for (const auto& [event, count] : counts) EXPECT_EQ(count, 40) << event;
}

TEST_F(X11EventTapsTest, KeysTypedWhileAMediaKeyIsDownAreNotLost) {
  install();
  desk_.press(0);
  desk_.tapCode(25);
  desk_.tapCode(26);
  EXPECT_THAT(desk_.windowGot(), ElementsAre("25 down", "25 up", "26 down", "26 up"));
  desk_.release(0);
  static_cast<void>(desk_.windowGot());
  static_cast<void>(tapSaw());
  expectOurs(0, "afterwards");
}

TEST_F(X11EventTapsTest, ModifiersThatChangeWhileAKeyIsDownLeaveNothingDangling) {
  install();
  desk_.pressCode(shiftKey);
  desk_.press(0);
  desk_.releaseCode(shiftKey);
  desk_.release(0);
  EXPECT_THAT(desk_.windowGot(), IsEmpty());
  EXPECT_THAT(tapSaw(), ElementsAre("shift+volumeUp down", "volumeUp up"));
  desk_.press(0);
  desk_.pressCode(shiftKey);
  desk_.release(0);
  desk_.releaseCode(shiftKey);
  EXPECT_THAT(desk_.windowGot(), IsEmpty());
  EXPECT_THAT(tapSaw(), ElementsAre("volumeUp down", "shift+volumeUp up"));
  expectOurs(0, "afterwards");
}

TEST_F(X11EventTapsTest, MediaKeysMayOverlap) {
  install();
  for (const bool isFirstReleasedFirst : {true, false}) {
    desk_.press(0);
    desk_.press(7);
    desk_.release(isFirstReleasedFirst ? 0 : 7);
    desk_.press(3);
    desk_.release(isFirstReleasedFirst ? 7 : 0);
    desk_.release(3);
    ASSERT_TRUE(awaitSeen(6));
    EXPECT_THAT(desk_.windowGot(), IsEmpty());
    EXPECT_THAT(tapSaw(), Each(testing::Not(testing::HasSubstr("repeat"))));
    expectOurs(7, "afterwards");
    expectOurs(0, "afterwards");
  }
}

TEST_F(X11EventTapsTest, AKeyHeldWhileTheTapGoesIsFinishedQuietly) {
  for (const bool isServerLeft : {false, true}) {
    install();
    desk_.press(0);
    ASSERT_TRUE(awaitSeen(1));
    if (isServerLeft) {
      tap_.reset();
      taps_ = std::make_unique<desktop::X11EventTaps>(loop_, desk_.display().name());
    } else {
      tap_->enable(false);
      desk_.release(0);
      EXPECT_THAT(desk_.windowGot(), IsEmpty()) << "not a release without its press";
    }
    desk_.release(0);
    static_cast<void>(desk_.windowGot());
    static_cast<void>(tapSaw());
    expectTheDesktops(0, "without a tap");
    tap_.reset();
  }
}

TEST_F(X11EventTapsTest, AKeyHeldWhileTheKeymapChangesStaysTheSameKey) {
  install();
  for (const std::vector<std::string>& change :
       {std::vector<std::string>{"xmodmap", "-e", "keycode 123 = F13", "-e",
                                 "keycode 150 = XF86AudioRaiseVolume"},
        {"setxkbmap", "fr"}}) {
    const auto key = desk_.keycodeOf(tests::mediaKeysym(0));
    desk_.pressCode(key);
    ASSERT_TRUE(awaitSeen(1));
    ASSERT_TRUE(desk_.changeKeymap(change));
    ASSERT_TRUE(desk_.await([&] { return loop_.nextTimer() < loop_.now() + 1; }));
    loop_.advance(0.1);
    desk_.releaseCode(key);
    EXPECT_THAT(desk_.windowGot(), IsEmpty());
    auto seen = tapSaw();
    std::erase(seen, "volumeUp down repeat");
    EXPECT_THAT(seen, ElementsAre("volumeUp down", "volumeUp up"));
    expectOurs(0, "at its new place");
  }
  desk_.tapCode(spareKey);
  EXPECT_THAT(desk_.windowGot(), ElementsAre("150 down", "150 up")) << "its old place is free";
}

TEST_F(X11EventTapsTest, AKeyIsFoundOnSeveralKeycodesAndAtAnyLevel) {
  changeKeymap({"keycode 150 = XF86AudioMute", "keycode 151 = F13 XF86AudioMute",
                "keycode 152 = XF86AudioMute F13"});
  install();
  const auto tapWith = [this](xcb_keycode_t key, bool hasShift) {
    if (hasShift) desk_.pressCode(shiftKey);
    desk_.tapCode(key);
    if (hasShift) desk_.releaseCode(shiftKey);
    return desk_.windowGot();
  };
  expectOurs(7, "at its usual place");
  EXPECT_THAT(tapWith(150, false), IsEmpty());
  EXPECT_THAT(tapWith(151, false), ElementsAre("151 down", "151 up"));
  EXPECT_THAT(tapWith(151, true), IsEmpty());
  EXPECT_THAT(tapWith(152, false), IsEmpty());
  EXPECT_THAT(tapWith(152, true), ElementsAre("152 down", "152 up"));
  EXPECT_THAT(tapSaw(), ElementsAre("mute down", "mute up", "shift+mute down", "shift+mute up",
                                    "mute down", "mute up"));
}

TEST_F(X11EventTapsTest, AKeyIsWhatItIsInTheLayoutInUse) {
  ASSERT_TRUE(desk_.changeKeymap({"setxkbmap", "-layout", "us,fr"}));
  changeKeymap({"keycode 150 = F13 F13 XF86AudioMute XF86AudioMute"});
  install();
  desk_.tapCode(spareKey);
  EXPECT_THAT(desk_.windowGot(), ElementsAre("150 down", "150 up"));
  desk_.lockGroup(1);
  desk_.tapCode(spareKey);
  EXPECT_THAT(desk_.windowGot(), IsEmpty());
  EXPECT_THAT(tapSaw(), ElementsAre("mute down", "mute up"));
  expectOurs(0, "a key that is the same in both");
}

TEST_F(X11EventTapsTest, AKeyThatAnotherProgramHasIsTriedAgain) {
  tests::OtherGrabber other(desk_);
  ASSERT_TRUE(other.grab(0));
  install();
  EXPECT_THAT(taps_->status().missing, ElementsAre(0));
  EXPECT_THAT(taps_->status().held, ElementsAre(1, 2, 3, 7));
  expectOurs(7, "not the other program's");
  loop_.advance(7);
  EXPECT_THAT(taps_->status().missing, ElementsAre(0));
  desk_.tap(0);
  EXPECT_THAT(desk_.windowGot(), IsEmpty());
  EXPECT_THAT(tapSaw(), IsEmpty()) << "the other program's still";
  other.ungrabAll();
  loop_.advance(3);
  EXPECT_THAT(taps_->status().missing, IsEmpty());
  EXPECT_EQ(loop_.timerCount(), 0U) << "nothing is missing, nothing is tried";
  expectOurs(0, "free again");
}

TEST_F(X11EventTapsTest, KeysThatWouldBePassedOnAreTheDesktops) {
  install();
  passed_ = {0, 1, 7};
  expectOurs(3, "not among them");
  taps_->reconsider();
  EXPECT_THAT(taps_->status().released, ElementsAre(0, 1, 7));
  expectTheDesktops(0, "at its first press");
  tests::OtherGrabber other(desk_);
  EXPECT_TRUE(other.grab(0));
  EXPECT_TRUE(other.grab(7));
  EXPECT_FALSE(other.grab(3));
  EXPECT_EQ(loop_.timerCount(), 0U) << "what is released is not tried again";
  passed_.clear();
  taps_->reconsider();
  EXPECT_THAT(taps_->status().missing, ElementsAre(0, 7));
  other.ungrabAll();
  loop_.advance(3);
  EXPECT_THAT(taps_->status().held, SizeIs(5));
  expectOurs(0, "taken back");
}

TEST_F(X11EventTapsTest, AServerThatGoesIsLeftAlone) {
  tests::OtherGrabber other(desk_);
  ASSERT_TRUE(other.grab(0));
  install();
  const auto name = desk_.display().name();
  desk_.stop();
  ASSERT_TRUE(desk_.await([&] { return loop_.timerCount() == 0; })) << "still trying";
  EXPECT_THAT(taps_->status().held, IsEmpty());
  EXPECT_FALSE(taps_->canInstallTap());
  EXPECT_FALSE(makeTap());
  tap_->enable(false);
  taps_->reconsider();
}

TEST_F(X11EventTapsTest, WithoutTheKeyboardExtensionTheCoreKeymapServes) {
  const desktop::XcbConnection connection(xcb_connect(desk_.display().name().c_str(), nullptr));
  EXPECT_FALSE(desktop::readXkbKeymap(connection.get())) << "not set up yet";
  ASSERT_TRUE(desktop::setUpXkb(connection.get()));
  const auto xkb = desktop::readXkbKeymap(connection.get());
  const auto core = desktop::readCoreKeymap(connection.get());
  ASSERT_TRUE(xkb && core);
  const std::set<std::uint32_t> codes(std::begin(desktop::mediaKeyCodes),
                                      std::end(desktop::mediaKeyCodes));
  const auto combinations = [&](const desktop::Keymap& keymap) {
    return desktop::MediaKeyMap(keymap, desktop::readKeyModifiers(connection.get(), keymap))
        .combinations(codes);
  };
  EXPECT_THAT(combinations(*core), SizeIs(testing::Ge(40U)));
  EXPECT_EQ(combinations(*core), combinations(*xkb));
}

}  // namespace
}  // namespace valdrix
