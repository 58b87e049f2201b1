// The drawn symbols, and the path data that they are written in.

#include <gtest/gtest.h>

#include "view/PathParser.h"
#include "view/SymbolArt.h"

namespace valdrix::view {
namespace {

const char* const names[] = {"speaker.slash.fill",
                             "speaker.fill",
                             "speaker.wave.1.fill",
                             "speaker.wave.2.fill",
                             "speaker.wave.3.fill",
                             "sun.min.fill",
                             "sun.max.fill",
                             "sparkles",
                             "lock.fill",
                             "gear",
                             "calendar",
                             "slider.horizontal.below.rectangle",
                             "info.circle",
                             "checkmark.circle.fill",
                             "xmark.circle.fill",
                             "safari",
                             "rectangle.topthird.inset.filled"};

TEST(SymbolArt, EveryPartIsDrawnInsideTheSymbolsBox) {
  for (const char* name : names) {
    for (const auto weight : {FontWeight::light, FontWeight::medium, FontWeight::semibold}) {
      SCOPED_TRACE(name);
      const Symbol* symbol = symbolNamed(name, weight);
      ASSERT_NE(symbol, nullptr);
      ASSERT_FALSE(symbol->parts.empty());
      for (const auto& part : symbol->parts) {
        EXPECT_FALSE(part.path.isEmpty());
        const Rect bounds = part.path.bounds().outset(part.lineWidth / 2);
        EXPECT_GE(bounds.minX(), 0);
        EXPECT_GE(bounds.minY(), 0);
        EXPECT_LE(bounds.maxX(), symbol->size.width + 1e-9);
        EXPECT_LE(bounds.maxY(), symbol->size.height + 1e-9);
      }
    }
  }
  EXPECT_EQ(symbolNamed("speaker", FontWeight::medium), nullptr);
}

TEST(SymbolArt, NothingHopsWhenOneLevelsSymbolReplacesAnothers) {
  const auto symbol = [](const char* name) { return symbolNamed(name, FontWeight::medium); };
  const auto* three = symbol("speaker.wave.3.fill");
  EXPECT_LE(three->size.width * 13, 18 + 1e-9);
  for (const char* name : {"speaker.fill", "speaker.wave.1.fill", "speaker.wave.2.fill"}) {
    EXPECT_EQ(symbol(name)->size, three->size);
    EXPECT_EQ(symbol(name)->parts[0].path, three->parts[0].path);
  }
  EXPECT_EQ(symbol("speaker.slash.fill")->size, three->size);
  EXPECT_EQ(symbol("sun.min.fill")->parts[0].path, symbol("sun.max.fill")->parts[0].path);
}

TEST(PathParser, ReadsAbsoluteRelativeAndRepeatedCommands) {
  Path expected;
  expected.move({1, 2});
  expected.line({3, 4});
  expected.line({3, -5});
  expected.line({4.5, -5});
  expected.quad({5, -4}, {6, -5});
  expected.cubic({7, 0}, {8, 0}, {9, -1});
  expected.close();
  expected.line({2, 3});
  EXPECT_EQ(parsePath("M1 2 3,4V-5h1.5q.5 1 1.5 0c1 5 2 5 3 4zl1 1"), expected);
}

TEST(PathParser, ArcsRunThroughTheirCircle) {
  // A half circle below its ends, in two quarters: its middle is the end of the first.
  const auto half = parsePath("M0 0 A5 5 0 0 0 10 0");
  ASSERT_TRUE(half && half->elements().size() == 3);
  EXPECT_NEAR(half->elements()[1].points[2].x, 5, 1e-9);
  EXPECT_NEAR(half->elements()[1].points[2].y, 5, 1e-9);
  // Radii too small to join the ends grow; sweeping the other way runs above.
  const auto grown = parsePath("M0 0 a1 1 30 0 1 10 0");
  ASSERT_TRUE(grown && grown->elements().size() == 3);
  EXPECT_NEAR(grown->elements()[1].points[2].y, -5, 1e-9);
  // The large part of a circle of radius 5 around (3, 4) or (3, -4).
  const auto large = parsePath("M0 0 A5 5 0 1 1 6 0");
  ASSERT_TRUE(large);
  EXPECT_NEAR(large->bounds().maxX() - 3, 5, 0.6);
  EXPECT_LT(large->bounds().minY(), -8);
  EXPECT_EQ(large->elements().back().points[2], (Point{6, 0}));
}

}  // namespace
}  // namespace valdrix::view
