// Text without a font: as wide and high as its characters and lines.

#include <gtest/gtest.h>
#include <limits>

#include "sim/SimTextMetrics.h"

namespace valdrix::sim {
namespace {

constexpr double unlimited = std::numeric_limits<double>::infinity();

TEST(SimTextMetrics, BreaksLinesBetweenWordsWithinBounds) {
  // At size 10 a character is 6 wide and a line 12 high.
  const struct {
    const char* text;
    double maxWidth;
    int lineLimit;
    double tracking;
    view::Size size;
  } rows[]{
      {"", unlimited, 0, 0, {0, 12}},
      {"abc", unlimited, 0, 0, {18, 12}},
      {"été", unlimited, 0, 0, {18, 12}},
      {"abc", unlimited, 0, 1.5, {22.5, 12}},
      {"abc\nab", unlimited, 0, 0, {18, 24}},
      {"abc", 18, 0, 0, {18, 12}},
      {"abc def", 18, 0, 0, {18, 24}},
      {"abc def", 42, 0, 0, {42, 12}},
      {"ab cd ef", 35, 0, 0, {30, 24}},
      {"abcdefgh", 18, 0, 0, {18, 36}},
      {"abcdefgh", 18, 1, 0, {18, 12}},
      {"abc def ghi", 20, 2, 0, {18, 24}},
      {"abc", 0, 0, 0, {0, 36}},
  };
  for (const auto& row : rows) {
    const view::TextStyle style{
        .font = {.size = 10}, .tracking = row.tracking, .lineLimit = row.lineLimit};
    const auto size = SimTextMetrics().measure(row.text, style, row.maxWidth);
    EXPECT_DOUBLE_EQ(size.width, row.size.width) << row.text << ' ' << row.maxWidth;
    EXPECT_DOUBLE_EQ(size.height, row.size.height) << row.text << ' ' << row.maxWidth;
  }
}

TEST(SimTextMetrics, FitsTheWidthThatItMeasured) {
  for (const double fontSize : {9.0, 11.0, 13.0, 34.7}) {
    const view::TextStyle style{.font = {.size = fontSize}, .tracking = 0.3};
    const char* const text = "Aucun événement à venir aujourd'hui";
    const auto ideal = SimTextMetrics().measure(text, style, unlimited);
    EXPECT_EQ(SimTextMetrics().measure(text, style, ideal.width), ideal) << fontSize;
  }
}

}  // namespace
}  // namespace valdrix::sim
