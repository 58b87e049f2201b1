#include <gmock/gmock.h>

#include "tests/x11/TestPanel.h"
#include "tests/x11/X11DeskWorld.h"

namespace valdrix::tests {
namespace {

/// Counts what the X server sends us.
class X11Cost : public testing::Test {
 protected:
  X11Cost() {
    panel.show();
    world.runUntilStill(*panel.content);
    token = world.desktop().connection.addEventHandler(
        [this](const xcb_generic_event_t&) { ++events; });
  }

  X11DeskWorld world;
  TestPanel panel{world};
  int events = 0;
  Token token;
};

TEST_F(X11Cost, NothingWakesUsWhileTheMouseIsElsewhere) {
  for (int i = 0; i < 200; ++i) world.move(panel.at(-290 + i, 100 + i));
  EXPECT_EQ(events, 0);
}

TEST_F(X11Cost, MotionIsWatchedOnlyWhileAButtonIsHeld) {
  world.move(panel.at(0, 200));
  display().press();
  world.settle();
  world.move(panel.at(0, 210));
  EXPECT_GT(events, 1) << "a press, and motion";
  display().release();
  world.settle();
  events = 0;
  for (int i = 0; i < 20; ++i) world.move(panel.at(i, 220));
  EXPECT_EQ(events, 0);
}

TEST_F(X11Cost, TheWheelIsNoDrag) {
  world.move(panel.at(0, 200));
  display().press(4);
  world.settle();
  events = 0;
  world.move(panel.at(0, 210));
  EXPECT_EQ(events, 0);
  display().release(4);
}

}  // namespace
}  // namespace valdrix::tests
