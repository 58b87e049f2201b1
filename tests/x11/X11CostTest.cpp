#include <gtest/gtest.h>

#include "tests/x11/TestPanel.h"
#include "tests/x11/X11DeskWorld.h"

namespace valdrix::tests {
namespace {

TEST(X11Cost, NothingWakesUsWhileTheMouseIsElsewhereWithoutAButtonHeld) {
  X11DeskWorld world;
  TestPanel panel(world);
  panel.show();
  world.runUntilStill(*panel.content);
  int events = 0;
  const auto token =
      world.desktop().connection.addEventHandler([&](const xcb_generic_event_t&) { ++events; });
  const auto eventsOfMotion = [&] {
    world.settle();
    events = 0;
    for (int i = 0; i < 50; ++i) world.move(panel.at(-290 + i, 200 + i));
    return events;
  };
  EXPECT_EQ(eventsOfMotion(), 0);
  display().press();
  EXPECT_GT(eventsOfMotion(), 0) << "a drag";
  display().release();
  EXPECT_EQ(eventsOfMotion(), 0) << "the end of a drag";
  display().press(4);
  EXPECT_EQ(eventsOfMotion(), 0) << "the wheel is no drag";
  display().release(4);
}

TEST(X11Cost, AWindowThatIsDraggedElsewhereIsNewsOnce) {
  X11DeskWorld world;
  TestPanel panel(world);
  panel.show();
  world.runUntilStill(*panel.content);
  ForeignWindow window({10, 400, 200, 200});
  world.settle();
  int events = 0;
  const auto token =
      world.desktop().connection.addEventHandler([&](const xcb_generic_event_t&) { ++events; });
  for (int i = 0; i < 100; ++i) {
    window.moveTo({10 + i, 400});
    world.settle();
  }
  EXPECT_LE(events, 3);
}

}  // namespace
}  // namespace valdrix::tests
