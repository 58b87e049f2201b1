#include <gtest/gtest.h>
#include <string>

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "tests/e2e/AgentDesktop.h"
#include "tests/support/WaitFor.h"

namespace valdrix::tests {

namespace {

// Every test ends with the program being asked to end, and expects that it does so in good order;
// under the address sanitizer that includes leaks.

TEST(Faults, StartsWithNothingAndPicksUpWhatComes) {
  AgentDesktop desktop({.hasCompositor = false, .hasSound = false, .hasBus = false});
  ASSERT_TRUE(desktop.startAgent());
  // Without a compositing manager the window has the panel's shape.
  EXPECT_TRUE(desktop.awaitPixel(besideNotch, isBackground));
  desktop.keys.tap(key::volumeUp);

  desktop.bus = std::make_unique<PrivateBus>();
  EXPECT_TRUE(desktop.sound.start({{.name = AgentDesktop::sink}}));
  EXPECT_TRUE(desktop.sound.setVolume(AgentDesktop::sink, {0.5, 0.5}));
  EXPECT_TRUE(desktop.display().startCompositor());
  EXPECT_TRUE(desktop.awaitPixel(inNotch, isBlack));
  EXPECT_TRUE(waitFor([&] {
    desktop.keys.tap(key::volumeDown);
    return desktop.sound.volumes(AgentDesktop::sink).at(0) < 0.4;
  })) << "the sound server was never found";
  desktop.display().stopCompositor();
  EXPECT_TRUE(desktop.awaitPixel(inNotch, isBlack));
}

TEST(Faults, SurvivesItsServicesAndTakesThemUpAgain) {
  AgentDesktop desktop;
  ASSERT_TRUE(desktop.startAgent());
  desktop.sound.kill();
  desktop.keys.tap(key::volumeUp);
  EXPECT_TRUE(desktop.sound.start({{.name = AgentDesktop::sink}}));
  EXPECT_TRUE(desktop.sound.setVolume(AgentDesktop::sink, {0.5, 0.5}));
  EXPECT_TRUE(waitFor([&] {
    desktop.keys.tap(key::volumeDown);
    return desktop.sound.volumes(AgentDesktop::sink).at(0) < 0.4;
  }));
  for (int i = 0; i < 20; ++i)
    EXPECT_TRUE(desktop.sound.addSink({.name = "extra" + std::to_string(i)}));
  for (int i = 0; i < 20; ++i) EXPECT_TRUE(desktop.sound.removeSink("extra" + std::to_string(i)));

  desktop.bus->kill();
  ASSERT_TRUE(desktop.bus->start());
  EXPECT_TRUE(desktop.awaitPresentation("collapsed")) << "the agent has no voice any more";
  EXPECT_TRUE(desktop.isAgentRunning());
}

TEST(Faults, KeymapSwitchedWhileAKeyIsHeldLeavesNothingStuck) {
  AgentDesktop desktop;
  ASSERT_TRUE(desktop.startAgent());
  desktop.keys.press(key::volumeUp);
  EXPECT_TRUE(desktop.keys.changeKeymap({"setxkbmap", "fr"}));
  desktop.keys.release(key::volumeUp);
  EXPECT_TRUE(desktop.keys.changeKeymap({"setxkbmap", "us"}));
  EXPECT_TRUE(desktop.keys.windowGot().size() <= 1) << "at most the release is the window's";
  EXPECT_TRUE(waitFor([&] {
    desktop.keys.tap(key::volumeDown);
    return desktop.sound.volumes(AgentDesktop::sink).at(0) < 0.4;
  }));
  EXPECT_TRUE(desktop.awaitPresentation("collapsed")) << "an indicator is stuck";
}

TEST(Faults, ScreensPluggedAndUnpluggedAHundredTimes) {
  AgentDesktop desktop;
  ASSERT_TRUE(desktop.startAgent());
  desktop.display().movePointer(inNotch);
  for (int i = 0; i < 100; ++i) {
    ASSERT_EQ(
        desktop.display().run({"xrandr", "--setmonitor", "left", "700/180x982/250+0+0", "screen"}),
        0);
    ASSERT_EQ(desktop.display().run({"xrandr", "--delmonitor", "left"}), 0);
  }
  desktop.display().movePointer(farAway);
  EXPECT_TRUE(desktop.awaitPresentation("collapsed"));
  EXPECT_TRUE(desktop.awaitPixel(inNotch, isBlack));
  EXPECT_TRUE(desktop.awaitPixel(besideNotch, isBackground));
}

TEST(Faults, BrokenPreferencesAreSetAsideAndAbsurdOnesHarmless) {
  AgentDesktop desktop;
  desktop.setPreference("hudDuration", "1e308");
  desktop.setPreference("calendarMaxEvents", "many");
  desktop.setPreference("hiddenCalendarIDs", std::string(10'000'000, 'x').c_str());
  ASSERT_TRUE(desktop.startAgent());
  desktop.display().movePointer(farAway);
  desktop.keys.tap(key::volumeUp);
  EXPECT_TRUE(desktop.awaitPresentation("volumeHUD"));
  EXPECT_EQ(desktop.endAgent(), 0);

  QFile file(desktop.preferencesFile());
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  constexpr char junk[] = "hudDuration=nan\n\0\1\2 this is no line";
  file.write(junk, sizeof junk - 1);
  file.close();
  ASSERT_TRUE(desktop.startAgent());
  desktop.keys.tap(key::volumeUp);
  EXPECT_TRUE(desktop.awaitPresentation("volumeHUD"));
  EXPECT_TRUE(desktop.awaitPresentation("collapsed"));
  const QFileInfo info(desktop.preferencesFile());
  EXPECT_EQ(info.dir().entryList({info.fileName() + ".broken-*"}).size(), 1);
}

}  // namespace

}  // namespace valdrix::tests
