#include <gtest/gtest.h>

#include "tests/x11/X11DeskWorld.h"

namespace valdrix::tests {
namespace {

TEST(X11Screens, OneArrangementIsToldOnce) {
  X11DeskWorld world;
  world.setMonitors({{"A", 400, 300}});
  int changes = 0;
  const auto token = world.screens().observeChanges([&] { ++changes; });
  world.setMonitors({{"A", 400, 300}, {"B", 320, 200}});
  EXPECT_EQ(changes, 1);
  for (const char* choice : {"--primary", "--noprimary"}) {
    EXPECT_EQ(display().run({"xrandr", "--output", "screen", choice}), 0);
    world.settle();
  }
  EXPECT_EQ(changes, 1) << "the server tells of it, and nothing is different";
}

}  // namespace
}  // namespace valdrix::tests
