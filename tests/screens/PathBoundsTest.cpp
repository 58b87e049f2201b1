#include <cmath>
#include <gtest/gtest.h>

#include "desktop/screens/PathBounds.h"

namespace valdrix::desktop {
namespace {

TEST(PathBounds, ReadsEveryCommand) {
  const struct {
    const char* path;
    view::Rect bounds;
  } paths[] = {
      {"M 10 20 H 110 V 50 H 10 Z", {10, 20, 100, 30}},
      {"m10,20 100,0 0,30-100,0z", {10, 20, 100, 30}},
      {"M10 20h100v30h-100z m 200 0 l 10 10", {10, 20, 210, 30}},
      {"M0 0 C 0 40 100 40 100 0", {0, 0, 100, 40}},
      {"M0 0 q 50 30 100 0 t 10 5", {0, 0, 110, 30}},
      {"M0 0 S 10 20 30 .5e1", {0, 0, 30, 20}},
      {"M 90 10 a 10 10 0 1 0 20 0 a 10 10 0 1 0 -20 0", {90, 0, 20, 20}},
      {"M90 10A10 10 0 11110 10", {90, 0, 20, 10}},
      {"M0 0 A 5 5 0 0 1 20 0", {0, -10, 20, 10}},
  };
  for (const auto& [path, expected] : paths) {
    SCOPED_TRACE(path);
    const auto bounds = pathBounds(path);
    ASSERT_TRUE(bounds);
    EXPECT_NEAR(bounds->x, expected.x, 0.1);
    EXPECT_NEAR(bounds->y, expected.y, 0.1);
    EXPECT_NEAR(bounds->width, expected.width, 0.1);
    EXPECT_NEAR(bounds->height, expected.height, 0.1);
  }
}

TEST(PathBounds, RefusesWhatIsNoPath) {
  for (const char* path :
       {"", "M 10 20", "L", "M 1", "10 20 30", "M 0 0 L 10 x", "M0 0 L inf 5", "M0 0 H 100",
        "M 0 0 A 5 5 0 2 0 9 9", "M 0 0 X 10 10", "M 0 0 L 1e999 2"})
    EXPECT_FALSE(pathBounds(path)) << path;
}

}  // namespace
}  // namespace valdrix::desktop
