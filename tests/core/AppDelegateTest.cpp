// What is there before launching has finished, and what is left afterwards.

#include <functional>
#include <gtest/gtest.h>
#include <optional>
#include <vector>

#include "app/ValdrixApp.h"
#include "preferences/PreferenceKeys.h"
#include "sim/SimDesktop.h"

namespace valdrix {
namespace {

class App : public testing::Test {
 protected:
  App() {
    desktop.screens.plugIn({.name = "eDP-1", .frame = {0, 0, 1512, 982}});
    desktop.audioHardware.addDevice("speakers", 0.5F);
    desktop.displays.plug(1, true);
    desktop.runLoop.runPending();
  }

  sim::SimDesktop desktop;
};

TEST_F(App, RegistersTheDefaultsAndShowsNothingBeforeLaunchingHasFinished) {
  desktop.userDefaults.setFromOutside("hudDuration", "2");
  const ValdrixApp app(desktop.platform());
  EXPECT_TRUE(desktop.userDefaults.boolForKey(preferenceKeys::volumeHUDEnabled));
  EXPECT_TRUE(desktop.userDefaults.boolForKey(preferenceKeys::brightnessHUDEnabled));
  EXPECT_EQ(desktop.userDefaults.doubleForKey(preferenceKeys::hudDuration), 2);
  EXPECT_EQ(desktop.panelWindows.frontWindow(), nullptr);
  EXPECT_EQ(desktop.eventTaps.activeTapCount(), 0U);
  const AppDelegate& delegate = app.appDelegate();
  EXPECT_EQ(delegate.volumeService().level(), 0.5F);
  EXPECT_TRUE(delegate.brightnessService().isAvailable());
  EXPECT_EQ(delegate.viewModel().presentation(), NotchPresentation::collapsed);
  EXPECT_EQ(delegate.viewModel().expandedSize.get(), (view::Size{580, 140}));
}

TEST_F(App, HasOneControllerAndOneUnfocusableWindow) {
  ValdrixApp app(desktop.platform());
  app.didFinishLaunching();
  EXPECT_EQ(&app.appDelegate().windowController(), &app.appDelegate().windowController());
  EXPECT_TRUE(app.appDelegate().windowController().hasWindow());
  EXPECT_EQ(desktop.application.activationPolicy(), platform::ActivationPolicy::accessory);
  const auto* window = desktop.panelWindows.frontWindow();
  ASSERT_NE(window, nullptr);
  EXPECT_EQ(window->frame(), (view::Rect{396, -18, 720, 1000}));
  const auto& configuration = window->configuration();
  EXPECT_EQ(configuration.level, 26);
  EXPECT_TRUE(configuration.isBorderless && configuration.canJoinAllSpaces &&
              configuration.isStationary && configuration.isFullScreenAuxiliary &&
              configuration.ignoresMouseEvents && configuration.acceptsMouseMovedEvents);
  EXPECT_FALSE(configuration.isOpaque || configuration.hasShadow || configuration.isMovable ||
               configuration.isMovableByBackground || configuration.hidesOnDeactivate ||
               configuration.canBecomeKey || configuration.canBecomeMain);
}

TEST_F(App, LeavesNothingBehindWheneverItEnds) {
  const std::vector<std::function<void()>> happenings{
      [] {},
      [&] { desktop.eventTaps.press(0); },
      [&] { desktop.eventTaps.press(2); },
      [&] {
        desktop.pointer.move({756, 970});
      },
      [&] { desktop.audioHardware.setDefaultDevice(0); },
      [&] {
        desktop.pointer.move({756, 0});
      },
      [&] { desktop.accessibility.setTrusted(false); },
  };
  for (std::size_t count = 0; count <= happenings.size(); ++count) {
    std::optional<ValdrixApp> app;
    app.emplace(desktop.platform());
    app->didFinishLaunching();
    for (std::size_t i = 0; i < count; ++i) {
      desktop.runLoop.advance(0.3);
      happenings[i]();
    }
    // What the last one set off is still under way.
    app.reset();
    EXPECT_EQ(desktop.runLoop.timerCount(), 0U) << count;
    EXPECT_EQ(desktop.eventTaps.activeTapCount(), 0U) << count;
    EXPECT_EQ(desktop.panelWindows.frontWindow(), nullptr) << count;
    desktop.accessibility.setTrusted(true);
    desktop.pointer.move({0, 0});
    desktop.audioHardware.setDefaultDevice(desktop.audioHardware.device("speakers"));
    desktop.eventTaps.release(0);
    desktop.eventTaps.release(2);
    desktop.runLoop.advance(5);
  }
}

TEST_F(App, SurvivesAHundredScreens) {
  ValdrixApp app(desktop.platform());
  app.didFinishLaunching();
  desktop.pointer.move({756, 970});
  for (int i = 0; i < 100; ++i) {
    desktop.screens.unplug("eDP-1");
    desktop.runLoop.advance(i % 3 * 0.1);
    desktop.screens.plugIn({.name = "eDP-1", .frame = {0, 0, 1512.0 + i % 2, 982}});
    desktop.eventTaps.press(i % 2 ? 0 : 2);
    desktop.runLoop.advance(i % 5 * 0.1);
  }
  ASSERT_NE(desktop.panelWindows.frontWindow(), nullptr);
  EXPECT_EQ(app.appDelegate().viewModel().presentation(), NotchPresentation::expanded);
}

}  // namespace
}  // namespace valdrix
