#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <xkbcommon/xkbcommon-keysyms.h>

#include <QJsonArray>

#include "tests/e2e/AgentDesktop.h"
#include "tests/support/WaitFor.h"

namespace valdrix::tests {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr QPoint inExpanded{500, 150};
/// On the level bar, which begins at 662, where it is filled at half and empty at nothing.
constexpr QPoint onLevelBar{690, 46};

bool isWhite(QRgb color) { return qRed(color) > 240; }
bool isTrack(QRgb color) { return qRed(color) > 20 && qRed(color) < 90; }

TEST(Agent, VolumeKeysMoveTheOutputAndShowIt) {
  AgentDesktop desktop;
  ASSERT_TRUE(desktop.startAgent());
  desktop.display().movePointer(farAway);
  EXPECT_TRUE(isBackground(desktop.pixel(besideNotch)));

  desktop.keys.tap(key::volumeUp);
  EXPECT_TRUE(desktop.awaitVolume(0.5625));
  EXPECT_TRUE(desktop.awaitPixel(onLevelBar, isWhite));
  EXPECT_TRUE(isBlack(desktop.pixel(besideNotch)));
  EXPECT_TRUE(desktop.awaitPresentation("collapsed"));
  EXPECT_TRUE(desktop.awaitPixel(besideNotch, isBackground)) << "the indicator does not leave";

  desktop.display().pressKey(XKB_KEY_Shift_L);
  desktop.keys.tap(key::volumeUp);
  desktop.display().releaseKey(XKB_KEY_Shift_L);
  EXPECT_TRUE(desktop.awaitVolume(0.578125));

  desktop.keys.tap(key::volumeDown);
  EXPECT_TRUE(desktop.awaitVolume(0.515625));
  desktop.keys.tap(key::mute);
  EXPECT_TRUE(waitFor([&] { return desktop.sound.isMuted(AgentDesktop::sink); }));
  EXPECT_TRUE(desktop.awaitPixel(onLevelBar, isTrack)) << "a muted bar is empty";
  EXPECT_THAT(desktop.keys.windowGot(), IsEmpty());
}

TEST(Agent, BrightnessKeysMoveTheBacklightAndShowIt) {
  AgentDesktop desktop;
  ASSERT_TRUE(desktop.startAgent());
  desktop.display().movePointer(farAway);
  desktop.keys.tap(key::brightnessUp);
  EXPECT_TRUE(desktop.awaitPresentation("brightnessHUD"));
  EXPECT_EQ(desktop.sysfs.brightness(AgentDesktop::backlight), 540U);
  desktop.keys.tap(key::brightnessDown);
  EXPECT_TRUE(waitFor([&] { return desktop.sysfs.brightness(AgentDesktop::backlight) == 480U; }));
  EXPECT_THAT(desktop.keys.windowGot(), IsEmpty());
}

TEST(Agent, AnotherMixersChangeShowsToo) {
  AgentDesktop desktop;
  ASSERT_TRUE(desktop.startAgent());
  desktop.display().movePointer(farAway);
  ASSERT_TRUE(desktop.sound.setVolume(AgentDesktop::sink, {0.8, 0.8}));
  EXPECT_TRUE(desktop.awaitPresentation("volumeHUD"));
}

TEST(Agent, KeysThatAreNotWantedAreTheDesktops) {
  AgentDesktop desktop;
  ASSERT_TRUE(desktop.startAgent());
  for (const auto modifier : {XKB_KEY_Control_L, XKB_KEY_Alt_L, XKB_KEY_Super_L}) {
    desktop.display().pressKey(modifier);
    desktop.keys.tap(key::volumeUp);
    desktop.display().releaseKey(modifier);
  }
  EXPECT_THAT(desktop.keys.windowGot(), ElementsAre("volumeUp down", "volumeUp up", "volumeUp down",
                                                    "volumeUp up", "volumeUp down", "volumeUp up"));

  desktop.setPreference("volumeHUDEnabled", "false");
  ASSERT_TRUE(waitFor([&] { return desktop.keyState("volume-up") == "released"; }));
  desktop.keys.tap(key::volumeUp);
  EXPECT_THAT(desktop.keys.windowGot(), ElementsAre("volumeUp down", "volumeUp up"));
  EXPECT_TRUE(desktop.awaitVolume(0.5)) << "nobody turned it up";

  desktop.setPreference("volumeHUDEnabled", "true");
  ASSERT_TRUE(waitFor([&] { return desktop.keyState("volume-up") == "held"; }));
  desktop.keys.tap(key::volumeUp);
  EXPECT_TRUE(desktop.awaitVolume(0.5625));
}

TEST(Agent, PointerExpandsAndCollapsesAndClicksPassOutside) {
  AgentDesktop desktop;
  desktop.display().movePointer(farAway);
  ASSERT_TRUE(desktop.startAgent());
  desktop.display().movePointer(inNotch);
  EXPECT_TRUE(desktop.awaitPresentation("expanded"));
  EXPECT_TRUE(desktop.awaitPixel(inExpanded, isBlack));
  desktop.display().movePointer(inExpanded);
  desktop.display().click();
  EXPECT_EQ(desktop.background.presses(), 0) << "a click in the panel is the panel's";

  desktop.display().movePointer(farAway);
  EXPECT_TRUE(desktop.awaitPresentation("collapsed"));
  desktop.display().click();
  EXPECT_EQ(desktop.background.presses(), 1);
  EXPECT_TRUE(desktop.awaitPixel(inExpanded, isBackground));
  desktop.display().movePointer(inExpanded);
  desktop.display().click();
  EXPECT_EQ(desktop.background.presses(), 2) << "where the panel was, the desktop is again";
  EXPECT_EQ(desktop.presentation(), "collapsed");
}

TEST(Agent, ScreenChangesMoveThePanel) {
  AgentDesktop desktop;
  ASSERT_TRUE(desktop.startAgent());
  // Two monitors side by side: the panel hangs from the middle of the main one.
  EXPECT_EQ(
      desktop.display().run({"xrandr", "--setmonitor", "left*", "700/180x982/250+0+0", "screen"}),
      0);
  EXPECT_EQ(
      desktop.display().run({"xrandr", "--setmonitor", "right", "812/210x982/250+700+0", "none"}),
      0);
  EXPECT_TRUE(desktop.awaitPixel({350, 16}, isBlack));
  EXPECT_TRUE(desktop.awaitPixel(inNotch, isBackground));
}

}  // namespace

}  // namespace valdrix::tests
