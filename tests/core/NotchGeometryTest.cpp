// The panel's outline, and which screen it hangs from with which size.

#include <gtest/gtest.h>

#include "notch/NotchScreen.h"
#include "notch/NotchShape.h"

namespace valdrix {
namespace {

using platform::Screen;
using view::Path;
using view::Rect;
using view::Size;

Path outline(const Rect& rect, double r) {
  Path path;
  path.move({rect.minX(), rect.minY()});
  path.line({rect.maxX(), rect.minY()});
  path.line({rect.maxX(), rect.maxY() - r});
  path.quad({rect.maxX(), rect.maxY()}, {rect.maxX() - r, rect.maxY()});
  path.line({rect.minX() + r, rect.maxY()});
  path.quad({rect.minX(), rect.maxY()}, {rect.minX(), rect.maxY() - r});
  path.close();
  return path;
}

TEST(NotchShape, HoldsItsRadiusToHalfTheShorterSide) {
  const struct {
    Rect rect;
    double radius;
    double drawn;
  } rows[]{
      {{5, 7, 280, 68}, 16, 16}, {{0, 0, 280, 10}, 16, 5}, {{0, 0, 12, 100}, 16, 6},
      {{0, 0, 200, 32}, -4, 0},  {{0, 0, 0, 32}, 10, 0},
  };
  for (const auto& row : rows)
    EXPECT_EQ(NotchShape{row.radius}.path(row.rect), outline(row.rect, row.drawn)) << row.radius;
}

TEST(NotchSize, IsTheRoomBetweenTheUsableAreasInWholePoints) {
  const Rect frame{0, 0, 1512, 982};
  const Rect left{0, 950, 656, 32};
  const Rect right{856, 950, 656, 32};
  const struct {
    const char* what;
    Screen screen;
    Size size;
  } rows[]{
      {"no housing, whatever the areas say",
       {.frame = frame, .auxiliaryTopLeftArea = left, .auxiliaryTopRightArea = right},
       {200, 32}},
      {"fractions are rounded down",
       {.frame = frame,
        .safeAreaInsetTop = 37.5,
        .auxiliaryTopLeftArea = Rect{0, 950, 663.5, 32},
        .auxiliaryTopRightArea = Rect{848.4, 950, 663.6, 32}},
       {184, 37}},
      {"areas missing", {.frame = {100, 0, 1512, 982}, .safeAreaInsetTop = 30}, {1512, 30}},
      {"left area missing",
       {.frame = frame, .safeAreaInsetTop = 30, .auxiliaryTopRightArea = right},
       {856, 30}},
      {"areas overlap",
       {.frame = frame,
        .safeAreaInsetTop = 30,
        .auxiliaryTopLeftArea = Rect{0, 950, 900, 32},
        .auxiliaryTopRightArea = Rect{800, 950, 700, 32}},
       {0, 30}},
      {"negative inset", {.frame = frame, .safeAreaInsetTop = -3}, {200, 32}},
  };
  for (const auto& row : rows) EXPECT_EQ(notchSize(row.screen), row.size) << row.what;
}

}  // namespace
}  // namespace valdrix
