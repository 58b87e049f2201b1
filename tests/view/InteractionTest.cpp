#include <gtest/gtest.h>

#include "tests/view/Stage.h"

namespace valdrix::view {
namespace {

class Row : public testing::Test {
 protected:
  [[nodiscard]] View row(const std::string& name) {
    return button([this, name] { told += "click " + name + ' '; },
                  hStack({}, {label(name), spacer()})
                      .frame(FrameLimits{.maxHeight = ProposedSize::infinity})
                      .contentShape())
        .linkPointer()
        .help("about " + name)
        .onHover([this, name](bool isInside) { told += (isInside ? '+' : '-') + name + ' '; });
  }
  std::string told;
  Observed<bool> isOn{true};
};

TEST_F(Row, HoverTooltipLinkAndClickReachWhatIsUnderThePointer) {
  Stage stage(vStack({.spacing = 20}, {row("a").frame(FrameSize{.height = 150}), row("b")}));
  stage.frame();
  // Beside the text, between the rows, over the second, out.
  stage.host->pointerMoved({300, 75});
  EXPECT_EQ(stage.host->toolTip(), "about a");
  EXPECT_TRUE(stage.host->showsLinkPointer());
  stage.host->pointerMoved({301, 75});
  stage.host->pointerMoved({300, 160});
  EXPECT_EQ(stage.host->toolTip(), "");
  EXPECT_FALSE(stage.host->showsLinkPointer());
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

TEST_F(Row, WhatIsNotShownOrNotAllowedIsNotUnderThePointer) {
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

TEST_F(Row, LeavesWhenItMovesAwayOrGoes) {
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

TEST_F(Row, AClickMayTakeItsButtonAway) {
  Stage stage(Made{[&]() -> View {
    if (!isOn) return View();
    return button([&] { isOn = false; }, box(red)).onHover([&](bool) { told += 'h'; });
  }});
  stage.frame();
  stage.host->pointerPressed({10, 10});
  stage.host->pointerReleased({10, 10});
  stage.frame();
  EXPECT_FALSE(stage.box(red));
  EXPECT_EQ(told, "hh");
}

TEST_F(Row, ALineAroundCoversNothingAndAClipHidesWhatLiesOutside) {
  Stage stage(row("a")
                  .frame(FrameSize{.width = 100, .height = 20})
                  .frame(FrameSize{.width = 50, .height = 20, .alignment = Alignment::leading})
                  .clipShape(Rectangle{})
                  .overlay(stroke(Rectangle{}, Color::white(0), 0.5)));
  stage.host->setFrame({0, 0, 50, 20});
  stage.frame();
  stage.host->pointerMoved({40, 10});
  EXPECT_EQ(told, "+a ");
  stage.host->pointerMoved({60, 10});
  EXPECT_EQ(told, "+a -a ");
}

TEST_F(Row, OfOverlappingOnesTheFrontOneIsHit) {
  Stage stage(zStack(Alignment::center, {row("back"), row("front")}));
  stage.frame();
  stage.host->pointerMoved({10, 150});
  EXPECT_EQ(told, "+front ");
}

TEST_F(Row, AHoverThatAnimatesItselfMovesNothingElse) {
  Observed<bool> isHovered(false);
  Stage stage(Made{[&] {
    return hStack({}, {box(red.withOpacity(isHovered ? 0.5 : 0.1)).onHover([&](bool isInside) {
                         withAnimation(EaseOut{0.12}, [&] { isHovered = isInside; });
                       }),
                       box(green)});
  }});
  stage.frame();
  stage.host->pointerMoved({10, 150});
  ASSERT_TRUE(stage.host->needsFrame());
  int frames = 0;
  while (stage.host->needsFrame() && ++frames < 100)
    EXPECT_EQ(stage.frameAt(stage.now + 0.02).damage, (Rect{0, 0, 200, 300}));
  EXPECT_EQ(frames, 6);
}

}  // namespace
}  // namespace valdrix::view
