#include <gmock/gmock.h>

#include "desktop/x11/AlphaShape.h"

namespace valdrix::desktop {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class AlphaShapeTest : public testing::Test {
 protected:
  AlphaShapeTest() { image.fill(Qt::transparent); }
  void fill(const QRect& area, int alpha) {
    for (int y = area.top(); y <= area.bottom(); ++y)
      for (int x = area.left(); x <= area.right(); ++x) image.setPixel(x, y, qRgba(0, 0, 0, alpha));
  }
  QImage image{10, 8, QImage::Format_ARGB32_Premultiplied};
  AlphaShape shape;
};

TEST_F(AlphaShapeTest, FollowsTheRowsThatChanged) {
  EXPECT_TRUE(shape.update(image, 0, 8)) << "unknown before";
  EXPECT_THAT(shape.rectangles(), IsEmpty());
  fill({2, 0, 6, 3}, 255);
  EXPECT_TRUE(shape.update(image, 0, 3));
  EXPECT_THAT(shape.rectangles(), ElementsAre(QRect(2, 0, 6, 3)));
  EXPECT_FALSE(shape.update(image, 0, 8)) << "the same again";
  fill({2, 2, 1, 1}, 0);
  fill({5, 2, 1, 1}, 0);
  EXPECT_TRUE(shape.update(image, 2, 3));
  EXPECT_THAT(shape.rectangles(),
              ElementsAre(QRect(2, 0, 6, 2), QRect(3, 2, 2, 1), QRect(6, 2, 2, 1)));
}

TEST_F(AlphaShapeTest, HalfCoveredPixelsCount) {
  fill({0, 0, 10, 1}, 127);
  fill({9, 7, 1, 1}, 128);
  EXPECT_TRUE(shape.update(image, -5, 100)) << "rows beyond the picture are none";
  EXPECT_THAT(shape.rectangles(), ElementsAre(QRect(9, 7, 1, 1)));
}

}  // namespace
}  // namespace valdrix::desktop
