#include <gtest/gtest.h>

#include "tests/view/Stage.h"

namespace valdrix::view {
namespace {

class RowUnderPointer : public testing::Test {
 protected:
  [[nodiscard]] View row(const std::string& name) {
    return button([this, name] { told += "click " + name + ' '; },
                  hStack({}, {label(name), spacer()})
                      .frame(FrameLimits{.maxHeight = ProposedSize::infinity})
                      .contentShape())
        .help("about " + name)
        .onHover([this, name](bool isInside) { told += (isInside ? '+' : '-') + name + ' '; });
  }
  std::string told;
  Observed<bool> isOn{true};
};

TEST_F(RowUnderPointer, HoverTooltipAndClickReachWhatIsUnderThePointer) {
  Stage stage(vStack({.spacing = 20}, {row("a").frame(FrameSize{.height = 150}), row("b")}));
  stage.frame();
  // Beside the text, between the rows, over the second, out.
  stage.host->pointerMoved({300, 75});
  EXPECT_EQ(stage.host->toolTip(), "about a");
  stage.host->pointerMoved({301, 75});
  stage.host->pointerMoved({300, 160});
  EXPECT_EQ(stage.host->toolTip(), "");
  stage.host->pointerMoved({10, 225});
  stage.host->pointerExited();
  EXPECT_EQ(told, "+a -a +b -b ");
  told.clear();
  stage.host->pointerPressed({10, 75});
  stage.host->pointerReleased({300, 75});
  EXPECT_EQ(told, "+a click a ");
  told.clear();
  stage.host->pointerPressed({10, 75});
  stage.host->pointerReleased({10, 225});
  EXPECT_EQ(told, "-a +b ") << "pressed in one and released in another is no click";
}

TEST_F(RowUnderPointer, WhatIsNotShownOrNotAllowedIsNotUnderThePointer) {
  for (const bool usesOpacity : {true, false}) {
    isOn = true;
    told.clear();
    Stage stage(Made{[&] {
      const View content = row("a");
      return usesOpacity ? content.opacity(isOn ? 1 : 0) : content.allowsHitTesting(isOn);
    }});
    stage.frame();
    stage.host->pointerMoved({10, 150});
    // Leaves under a pointer that rests.
    isOn = false;
    stage.frame();
    EXPECT_EQ(told, "+a -a ");
    stage.host->pointerPressed({10, 150});
    stage.host->pointerReleased({10, 150});
    EXPECT_EQ(told, "+a -a ");
  }
}

TEST_F(RowUnderPointer, LeavesWhenItMovesAwayOrGoes) {
  Observed<double> height(300.0);
  Stage stage(Made{[&] {
    std::vector<View> rows{box(red).frame(FrameSize{.height = 300 - height})};
    if (isOn) rows.push_back(row("a"));
    return vStack({}, rows);
  }});
  stage.frame();
  stage.host->pointerMoved({10, 150});
  height = 100;
  stage.frame();
  EXPECT_EQ(told, "+a -a ");
  stage.host->pointerMoved({10, 250});
  stage.host->pointerPressed({10, 250});
  isOn = false;
  stage.frame();
  EXPECT_EQ(told, "+a -a +a -a ");
  stage.host->pointerReleased({10, 250});
  EXPECT_EQ(told, "+a -a +a -a ") << "the pressed button is gone";
}

TEST_F(RowUnderPointer, OfOverlappingOnesTheFrontOneIsHit) {
  Stage stage(zStack(Alignment::center, {row("back"), row("front")}));
  stage.frame();
  stage.host->pointerMoved({10, 150});
  EXPECT_EQ(told, "+front ");
}

// What the sign over the picture says; nothing while none can be seen.
std::optional<std::string> signText(Stage& stage) {
  stage.framesUntilRest();
  const auto& list = stage.host->displayList();
  if (list.empty() || list.back().kind != DisplayItem::Kind::text) return std::nullopt;
  return list.back().text;
}

TEST(ToolTip, ComesAfterAWhileAndLeavesWithItsView) {
  const View wide = box(red).frame(FrameSize{.width = 200, .height = 300});
  Stage stage(hStack({}, {wide.help("left"), box(blue).help("")}));
  stage.host->pointerMoved({10, 290});
  EXPECT_EQ(signText(stage), std::nullopt);
  stage.tick();
  EXPECT_EQ(signText(stage), "left");
  EXPECT_TRUE(stage.timers.empty());
  // There was no room below the pointer, and the sign is all inside.
  EXPECT_LT(stage.host->displayList().back().bounds.maxY(), 290);

  stage.host->pointerPressed({12, 290});
  stage.host->pointerReleased({12, 290});
  EXPECT_EQ(signText(stage), std::nullopt);
  stage.host->pointerMoved({300, 10});
  stage.host->pointerMoved({100, 10});
  stage.tick();
  EXPECT_EQ(signText(stage), "left");
  stage.host->pointerMoved({300, 10});
  EXPECT_EQ(signText(stage), std::nullopt);
  EXPECT_TRUE(stage.timers.empty());
}

}  // namespace
}  // namespace valdrix::view
