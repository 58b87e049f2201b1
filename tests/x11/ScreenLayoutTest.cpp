#include <gtest/gtest.h>

#include "desktop/x11/ScreenLayout.h"

namespace valdrix::desktop {
namespace {

// A main screen of twice as many pixels as points with a plain one to its right and one below, as
// Qt places them: origins in pixels, sizes in points.
const ScreenLayout layout{{
    {"main", {0, 0, 3024, 1964}, {0, 0, 1512, 982}, 2, 60},
    {"right", {3024, 200, 1000, 800}, {3024, -18, 1000, 800}, 1, 60},
    {"below", {0, 1964, 1000, 500}, {0, -1482, 1000, 500}, 1, 60},
}};

TEST(ScreenLayout, AWindowHangsFromTheScreenOfItsTopEdge) {
  EXPECT_EQ(layout.screenFor({396, -18, 720, 1000})->name, "main");
  EXPECT_EQ(layout.screenFor({3324, -218, 400, 1000})->name, "right");
  EXPECT_EQ(layout.screenFor({400, -1982, 200, 1000})->name, "below");
  EXPECT_EQ(layout.screenFor({9000, 9000, 10, 10})->name, "main") << "nowhere";
  EXPECT_EQ(ScreenLayout{}.screenFor({0, 0, 10, 10}), nullptr);
}

TEST(ScreenLayout, PlacesAndPixelsAgree) {
  const auto& main = layout.entries[0];
  EXPECT_EQ(ScreenLayout::toDevice({396, -18, 720, 1000}, main), QRect(792, 0, 1440, 2000));
  EXPECT_EQ(layout.toPoints({0, 0}), (view::Point{0, 982}));
  EXPECT_EQ(layout.toPoints({3023, 1963}), (view::Point{1511.5, 0.5}));
  EXPECT_EQ(layout.toPoints({3024, 200}), (view::Point{3024, 782}));
  EXPECT_EQ(layout.toPoints({5000, 300}).x, 5000) << "beyond every screen: the nearest one's";
  EXPECT_EQ(ScreenLayout{}.toPoints({5, 5}), (view::Point{0, 0}));
}

// The server must hit-test exactly the pixels whose places the core finds inside, edges included.
TEST(ScreenLayout, PixelsInsideARectangleAreThoseWhosePlacesAreInIt) {
  for (const double scale : {1.0, 1.25, 1.5, 2.0, 3.0}) {
    const ScreenLayout one{{{"main",
                             {0, 0, static_cast<int>(600 * scale), static_cast<int>(300 * scale)},
                             {0, 0, 600, 300},
                             scale,
                             60}}};
    for (const view::Rect rectangle : {view::Rect{200, 268, 200, 32}, view::Rect{160, 232, 280, 68},
                                       view::Rect{10.5, 5.25, 3, 7}}) {
      const QRect pixels = ScreenLayout::pixelsInside(rectangle, one.entries[0]);
      for (int x = 0; x < one.entries[0].device.width(); ++x)
        EXPECT_EQ(pixels.left() <= x && x <= pixels.right(),
                  rectangle.contains({one.toPoints({x, 0}).x, rectangle.midY()}))
            << scale << ' ' << x;
      for (int y = 0; y < one.entries[0].device.height(); ++y)
        EXPECT_EQ(pixels.top() <= y && y <= pixels.bottom(),
                  rectangle.contains({rectangle.midX(), one.toPoints({0, y}).y}))
            << scale << ' ' << y;
    }
  }
  EXPECT_TRUE(ScreenLayout::pixelsInside({5, 5, 0, 10}, layout.entries[0]).isEmpty());
}

}  // namespace
}  // namespace valdrix::desktop
