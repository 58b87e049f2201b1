// What only a real X server can do to the media keys.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>
#include <xkbcommon/xkbcommon-keysyms.h>

#include "desktop/keys/MediaKeyTaps.h"
#include "desktop/x11/X11Keys.h"
#include "sim/ManualRunLoop.h"
#include "tests/keys/TapTest.h"

namespace valdrix {
namespace {

using desktop::KeyState;
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
    EXPECT_THAT(tapSaw(), ElementsAre(name)) << when;
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
  std::unique_ptr<desktop::MediaKeyTaps> makeTaps() {
    return std::make_unique<desktop::MediaKeyTaps>(
        loop_, std::vector<desktop::KeySource::Maker>{[this](desktop::KeySource::Events events) {
          return std::make_unique<desktop::X11Keys>(
              desk_.display().name(), loop_, [](auto) { return true; }, std::move(events));
        }});
  }
  /// The names of the keys that stand like this.
  std::vector<std::string> keysThatAre(desktop::KeyState state) const {
    std::vector<std::string> names;
    for (const auto& entry : taps_->account().keys)
      if (entry.state == state)
        names.push_back(tests::mediaKeyName(static_cast<std::uint32_t>(entry.key)));
    return names;
  }
  std::unique_ptr<desktop::MediaKeyTaps> taps_ = makeTaps();
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
      EXPECT_THAT(tapSaw(), ElementsAre("shift+volumeDown"));
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
  EXPECT_THAT(counts, SizeIs(5)) << "no repeats";
  for (const auto& [event, count] : counts) EXPECT_EQ(count, 40) << event;
}

TEST_F(X11EventTapsTest, TheKeyboardIsFreeWhileAMediaKeyIsDown) {
  install();
  desk_.pressCode(27);
  desk_.press(0);
  ASSERT_TRUE(awaitSeen(1));
  ASSERT_TRUE(desk_.awaitFreeKeyboard());
  desk_.tapCode(25);
  desk_.releaseCode(27);
  EXPECT_THAT(desk_.windowGot(), ElementsAre("27 down", "25 down", "25 up", "27 up"));
  desk_.press(3);
  ASSERT_TRUE(desk_.await([this] { return seen_.back() == "brightnessDown"; })) << "overlapping";
  ASSERT_TRUE(desk_.awaitFreeKeyboard());
  desk_.release(0);
  desk_.release(3);
  EXPECT_THAT(desk_.windowGot(), IsEmpty());
  static_cast<void>(tapSaw());
  expectOurs(0, "afterwards");
  desk_.tap(0);
  EXPECT_TRUE(desk_.typesWhileWeSleep());
}

TEST_F(X11EventTapsTest, AKeyHeldWhileTheTapGoesIsFinishedQuietly) {
  install();
  desk_.press(0);
  ASSERT_TRUE(awaitSeen(1));
  tap_->enable(false);
  desk_.release(0);
  EXPECT_THAT(desk_.windowGot(), IsEmpty()) << "not a release without its press";
  static_cast<void>(tapSaw());
  expectTheDesktops(0, "without a tap");
}

TEST_F(X11EventTapsTest, AKeyHeldWhileTheKeymapChangesLeavesNothingDangling) {
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
    static_cast<void>(desk_.windowGot());
    static_cast<void>(tapSaw());
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
  EXPECT_THAT(tapSaw(), ElementsAre("mute", "shift+mute", "mute"));
}

TEST_F(X11EventTapsTest, AKeyIsWhatItIsInTheLayoutInUse) {
  ASSERT_TRUE(desk_.changeKeymap({"setxkbmap", "-layout", "us,fr"}));
  changeKeymap({"keycode 150 = F13 F13 XF86AudioMute XF86AudioMute"});
  install();
  desk_.tapCode(spareKey);
  EXPECT_THAT(desk_.windowGot(), ElementsAre("150 down", "150 up"));
  desk_.lockGroup(1);
  EXPECT_TRUE(desk_.await([this] {
    desk_.tapCode(spareKey);
    return !tapSaw().empty();
  }));
  static_cast<void>(desk_.windowGot());
  static_cast<void>(tapSaw());
  desk_.tapCode(spareKey);
  EXPECT_THAT(desk_.windowGot(), IsEmpty());
  EXPECT_THAT(tapSaw(), ElementsAre("mute"));
  expectOurs(0, "a key that is the same in both");
}

TEST_F(X11EventTapsTest, AKeyThatAnotherProgramHasIsTriedAgain) {
  tests::OtherGrabber other(desk_);
  ASSERT_TRUE(other.grab(0));
  ASSERT_TRUE(other.grabByXInput(7));
  install();
  EXPECT_THAT(keysThatAre(KeyState::taken), ElementsAre("volumeUp", "mute"));
  EXPECT_FALSE(taps_->isProcessTrusted());
  expectOurs(1, "not the other program's");
  loop_.advance(7);
  desk_.tap(0);
  desk_.tap(7);
  EXPECT_THAT(desk_.windowGot(), IsEmpty());
  EXPECT_THAT(tapSaw(), IsEmpty()) << "the other program's still";
  other.ungrabAll();
  loop_.advance(3);
  EXPECT_TRUE(taps_->isProcessTrusted());
  EXPECT_EQ(loop_.timerCount(), 0U) << "nothing is missing, nothing is tried";
  expectOurs(0, "free again");
  EXPECT_FALSE(other.grab(0)) << "a later one would get the key, and nobody would tell";
  EXPECT_FALSE(other.grabByXInput(0));
}

TEST_F(X11EventTapsTest, KeysThatWouldBePassedOnAreTheDesktops) {
  install();
  passed_ = {0, 1, 7};
  taps_->reconsider();
  EXPECT_THAT(keysThatAre(KeyState::released), ElementsAre("volumeUp", "volumeDown", "mute"));
  expectTheDesktops(0, "at its first press");
  expectOurs(3, "not among them");
  tests::OtherGrabber other(desk_);
  EXPECT_TRUE(other.grab(0));
  EXPECT_EQ(loop_.timerCount(), 0U) << "what is released is not tried again";
  EXPECT_TRUE(taps_->isProcessTrusted()) << "nor missed";
}

TEST_F(X11EventTapsTest, AServerThatGoesIsLeftAlone) {
  tests::OtherGrabber other(desk_);
  ASSERT_TRUE(other.grab(0));
  install();
  const auto name = desk_.display().name();
  desk_.stop();
  ASSERT_TRUE(desk_.await([&] { return loop_.timerCount() == 0; })) << "still trying";
  EXPECT_THAT(keysThatAre(KeyState::held), IsEmpty());
  EXPECT_FALSE(taps_->isProcessTrusted());
  tap_->enable(false);
  taps_->reconsider();
}

}  // namespace
}  // namespace valdrix
