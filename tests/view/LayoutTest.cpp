#include <gtest/gtest.h>

#include "tests/view/Stage.h"

namespace valdrix::view {
namespace {

struct Case {
  const char* rule;
  View view;
  Rect red;
  std::optional<Rect> green = std::nullopt;
  std::optional<Rect> blue = std::nullopt;
};

/// Text is drawn in a box that is a little wider than it.
void expectAlike(const std::optional<Rect>& drawn, const Rect& expected, const char* rule) {
  ASSERT_TRUE(drawn) << rule;
  const double error = std::max({std::abs(drawn->x - expected.x), std::abs(drawn->y - expected.y),
                                 std::abs(drawn->width - expected.width),
                                 std::abs(drawn->height - expected.height)});
  EXPECT_LT(error, 0.06) << rule << ": " << *drawn << " instead of " << expected;
}

void check(const std::vector<Case>& cases) {
  for (const auto& c : cases) {
    const View corner =
        zStack(Alignment::topLeading, {c.view})
            .frame(
                FrameLimits{.maxWidth = 300, .maxHeight = 100, .alignment = Alignment::topLeading});
    Stage stage(corner, {300, 100});
    stage.frame();
    expectAlike(stage.box(red), c.red, c.rule);
    if (c.green) expectAlike(stage.box(green), *c.green, c.rule);
    if (c.blue) expectAlike(stage.box(blue), *c.blue, c.rule);
  }
}

TEST(Layout, RowsAndColumnsGiveTheLeastFlexibleTheirRoomFirst) {
  check({
      {"a shape takes what is offered", box(red), {0, 0, 300, 100}},
      {"equally flexible ones share alike",
       hStack({.spacing = 10}, {box(red), box(green)}),
       {0, 0, 145, 100},
       Rect{155, 0, 145, 100}},
      {"a fixed one keeps its size wherever it stands",
       hStack({.spacing = 10}, {box(red), box(green).frame(FrameSize{.width = 18}), box(blue)}),
       {0, 0, 131, 100},
       Rect{141, 0, 18, 100},
       Rect{169, 0, 131, 100}},
      {"what a limited one leaves goes to the others",
       hStack({}, {box(red), box(green).frame(FrameLimits{.maxWidth = 40})}),
       {0, 0, 260, 100},
       Rect{260, 0, 40, 100}},
      {"a minimum is kept when room is short",
       hStack({}, {box(red), box(green).frame(FrameLimits{.minWidth = 200})}),
       {0, 0, 100, 100},
       Rect{100, 0, 200, 100}},
      {"children that do not fit reach out, and are never negative",
       hStack({.spacing = 10}, {box(red).frame(FrameSize{.width = 295}), box(green)}),
       {0, 0, 295, 100},
       Rect{305, 0, 0, 100}},
      {"a spacer takes the rest",
       hStack({}, {label("ab", red), spacer(), label("c", green)}),
       {0, 0, 20, 20},
       Rect{290, 0, 10, 20}},
  });
}

TEST(Layout, StacksAlignAcross) {
  const View tall = box(red).frame(FrameSize{.width = 10, .height = 60});
  const View low = box(green).frame(FrameSize{.width = 30, .height = 20});
  check({
      {"centre", hStack({}, {tall, low}), {0, 0, 10, 60}, Rect{10, 20, 30, 20}},
      {"top",
       hStack({.alignment = VerticalAlignment::top}, {tall, low}),
       {0, 0, 10, 60},
       Rect{10, 0, 30, 20}},
      {"trailing",
       vStack({.alignment = HorizontalAlignment::trailing}, {tall, low}),
       {20, 0, 10, 60},
       Rect{0, 60, 30, 20}},
      {"on top of each other",
       zStack(Alignment::trailing, {tall, low}),
       {20, 0, 10, 60},
       Rect{0, 20, 30, 20}},
  });
}

TEST(Layout, FramesPaddingAndLayers) {
  check({
      {"a frame aligns what is smaller",
       label("ab", red).frame(
           FrameSize{.width = 100, .height = 40, .alignment = Alignment::trailing}),
       {80, 10, 20, 20}},
      {"an infinite maximum takes all that is left",
       hStack({}, {label("ab", green),
                   label("c", red).frame(FrameLimits{.maxWidth = ProposedSize::infinity,
                                                     .alignment = Alignment::leading})}),
       {20, 0, 10, 20},
       Rect{0, 0, 20, 20}},
      {"padding is taken from the offer and added to the size",
       hStack({}, {label("ab", red).padding({.top = 4, .leading = 8, .bottom = 4, .trailing = 8}),
                   box(green)}),
       {8, 40, 20, 20},
       Rect{36, 0, 264, 100}},
      {"a background takes the view's size, whatever its own is",
       label("ab", red).background(box(green)),
       {0, 0, 20, 20},
       Rect{0, 0, 20, 20}},
      {"an overlay may be larger and is aligned",
       label("abcd", red).overlay(label("x", green), Alignment::trailing),
       {0, 0, 40, 20},
       Rect{30, 0, 10, 20}},
      {"layers are offered the same, and do not grow with the largest",
       zStack(Alignment::topLeading,
              {box(red), box(green).frame(FrameSize{.width = 500, .height = 10})}),
       {0, 0, 300, 100},
       Rect{0, 0, 500, 10}},
  });
}

TEST(Layout, IdealSizes) {
  const View line = box(green).frame(FrameSize{.width = 1});
  check({
      {"fixed to its ideal size, a long text is not cut",
       label("abcdefghijabcdefghijabcdefghijabcdef", red).fixedSize(),
       {0, 0, 360, 20}},
      {"a shape has 10 points where nothing is offered", box(red).fixedSize(), {0, 0, 10, 10}},
      {"a line beside a column becomes as tall as the row, also in one of ideal height",
       hStack({.alignment = VerticalAlignment::top},
              {line, vStack({}, {label("a", red), label("b", blue)})})
           .fixedSize(false, true),
       {1, 0, 10, 20},
       Rect{0, 0, 1, 40},
       Rect{1, 20, 10, 20}},
      {"texts of a row that fits are not cut for one another",
       hStack({}, {text("abcdefghij", {.lineLimit = 1}, red).frame(FrameLimits{.minWidth = 90}),
                   text("abc", {.lineLimit = 1}, green)})
           .fixedSize(),
       {0, 0, 100, 20},
       Rect{100, 0, 30, 20}},
      {"text breaks into the lines it may have",
       text("abcdefghijabcdefghijabcdefghijabcdefghij", {.lineLimit = 2}, red)
           .frame(FrameSize{.width = 100}),
       {0, 0, 100, 40}},
  });
}

TEST(Layout, WhatIsAtRestIsNotMeasuredAgain) {
  Observed<double> width(100.0);
  View column = vStack({}, {label("abc"), hStack({}, {label("de"), spacer(), label("f")})});
  for (int depth = 0; depth < 6; ++depth) column = hStack({}, {column, spacer()});
  Stage stage(Made{[&, column] {
    return zStack(Alignment::top, {column.frame(FrameSize{.width = 200, .height = 100}),
                                   box(red).frame(FrameSize{.width = width})});
  }});
  stage.frame();
  // Each text in its ideal size and in a few narrower ones, and not three times more with each
  // level.
  EXPECT_LE(stage.metrics.count, 3 * 8);
  stage.metrics.count = 0;
  withAnimation(Spring{}, [&] { width = 200; });
  EXPECT_GT(stage.framesUntilRest(), 10);
  EXPECT_EQ(stage.metrics.count, 0);
}

TEST(Layout, HiddenLayersAreMeasuredOnceTheyAreSeenOrPrepared) {
  for (const bool isPrepared : {false, true}) {
    Observed<double> opacity(0.0);
    Stage stage(Made{[&] { return box(red).overlay(label("abc").opacity(opacity)); }});
    stage.frame();
    EXPECT_EQ(stage.metrics.count, 0);
    if (isPrepared) stage.host->prepareHiddenLayers();
    EXPECT_EQ(stage.metrics.count > 0, isPrepared);
    stage.metrics.count = 0;
    opacity = 1;
    stage.frame();
    EXPECT_EQ(stage.metrics.count == 0, isPrepared);
  }
}

}  // namespace
}  // namespace valdrix::view
