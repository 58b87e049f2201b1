// What is left when the program ends, at whatever moment.

#include <functional>
#include <gtest/gtest.h>
#include <optional>
#include <vector>

#include "app/ValdrixApp.h"
#include "sim/SimDesktop.h"

namespace valdrix {
namespace {

TEST(App, LeavesNothingBehindWheneverItEnds) {
  sim::SimDesktop desktop;
  desktop.screens.plugIn({.name = "eDP-1", .frame = {0, 0, 1512, 982}});
  desktop.audioHardware.addDevice("speakers", 0.5F);
  desktop.displays.plug(1, true);
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
    EXPECT_FALSE(desktop.panelWindows.frontWindow()->configuration().canBecomeKey)
        << "it takes the keys from whoever types";
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

}  // namespace
}  // namespace valdrix
