// How changes reach the screen: what moves, for how long, and which frames that takes.

#include <gtest/gtest.h>

#include "tests/view/Stage.h"

namespace valdrix::view {
namespace {

constexpr Spring spring{.response = 0.42, .dampingFraction = 0.48};

/// A red box whose width has two causes, of which the second is not read while the first holds.
class Panel : public testing::Test {
 protected:
  [[nodiscard]] double widthAt(double time) {
    stage.frameAt(time);
    return stage.box(red)->width;
  }
  Observed<bool> isExpanded{false};
  Observed<bool> hasIndicator{false};
  std::vector<Animation> started;
  Stage stage{Made{[this] {
    const double width = isExpanded ? 300 : hasIndicator ? 280 : 200;
    return box(red).frame(FrameSize{.width = width, .height = 10});
  }}};
};

TEST_F(Panel, NothingMovesBeforeTheFirstFrame) {
  withAnimation(spring, [&] { isExpanded = true; });
  EXPECT_EQ(widthAt(0), 300);
  EXPECT_FALSE(stage.host->needsFrame());
}

TEST_F(Panel, AJumpThatNoFrameShowedIsPartOfTheMovementAfterIt) {
  hasIndicator = true;
  stage.frame();
  stage.host->setOnAnimationStarted(
      [&](const Animation& animation) { started.push_back(animation); });
  hasIndicator = false;
  withAnimation(spring, [&] { isExpanded = true; });
  EXPECT_EQ(widthAt(0), 280);
  EXPECT_TRUE(stage.host->needsFrame());
  EXPECT_NEAR(widthAt(0.1), 300 + spring.motion(-20, 0, 0.1).position, 1e-9);
  EXPECT_EQ(started, std::vector<Animation>{spring});
}

TEST_F(Panel, AJumpBackAndForthLeavesTheMovementAlone) {
  stage.frame();
  withAnimation(spring, [&] { isExpanded = true; });
  stage.frameAt(0.05);
  isExpanded = false;
  withAnimation(spring, [&] { isExpanded = true; });
  EXPECT_NEAR(widthAt(0.1), 300 + spring.motion(-100, 0, 0.1).position, 1e-9);
}

TEST_F(Panel, AnimatedThenImmediateKeepsEachToItself) {
  isExpanded = true;
  stage.frame();
  withAnimation(spring, [&] { isExpanded = false; });
  // Was not read while expanded; still it must not ride on the animation before it.
  hasIndicator = true;
  EXPECT_EQ(widthAt(0), 280);
  EXPECT_FALSE(stage.host->needsFrame());
}

TEST_F(Panel, AnUnseenJumpIsPartAlsoOfWhatWasNotReadBefore) {
  isExpanded = true;
  stage.frame();
  isExpanded = false;
  withAnimation(spring, [&] { hasIndicator = true; });
  EXPECT_EQ(widthAt(0), 300);
  EXPECT_NEAR(widthAt(0.1), 280 + spring.motion(20, 0, 0.1).position, 1e-9);
}

TEST_F(Panel, AnInnerAnimationWinsForItsOwnChanges) {
  stage.frame();
  stage.host->setOnAnimationStarted(
      [&](const Animation& animation) { started.push_back(animation); });
  withAnimation(spring, [&] {
    hasIndicator = true;
    withAnimation(EaseOut{1}, [&] { isExpanded = true; });
  });
  EXPECT_EQ(started, (std::vector<Animation>{spring, EaseOut{1}}));
  EXPECT_EQ(widthAt(0.5), 300 - 100 * 0.125);
  EXPECT_FALSE(Transaction::current().animation);
}

TEST_F(Panel, FramesComeWhileItMovesAndEndOnPixels) {
  stage.host->setScale(1);
  stage.host->setFrame({0, 0, 401, 10});
  stage.frame();
  withAnimation(spring, [&] { isExpanded = true; });
  int offPixels = 0;
  Damage lastDamage;
  int frames = 0;
  for (; stage.host->needsFrame(); ++frames) {
    lastDamage = stage.frameAt(stage.now + 1.0 / 60).damage;
    offPixels += stage.box(red)->x != std::round(stage.box(red)->x) ? 1 : 0;
    ASSERT_LT(frames, 300);
  }
  EXPECT_GT(offPixels, 20) << "on its way it does not jump from pixel to pixel";
  EXPECT_FALSE(lastDamage.isEmpty());
  EXPECT_EQ(stage.box(red), (Rect{51, 0, 300, 10}));
  EXPECT_TRUE(stage.frameAt(stage.now + 1).damage.isEmpty());
  EXPECT_FALSE(stage.host->needsFrame());
}

TEST(Frames, WhatRestsStaysOnItsPixelsWhileSomethingElseMoves) {
  Observed<double> width(100.0);
  Stage stage(Made{[&] {
    return hStack({.alignment = VerticalAlignment::top},
                  {label("ab", green).padding({.top = 3.4, .leading = 0.3}),
                   box(red).frame(FrameSize{.width = width, .height = 10.7}), spacer()})
        .frame(FrameLimits{.maxHeight = 300, .alignment = Alignment::topLeading});
  }});
  stage.host->setScale(1);
  stage.frame();
  withAnimation(spring, [&] { width = 150; });
  while (stage.host->needsFrame()) {
    const auto frame = stage.frameAt(stage.now + 1.0 / 60);
    EXPECT_GE(frame.damage.bounds().minX(), 20) << "the text is not drawn again";
    EXPECT_EQ(stage.box(green)->origin(), (Point{0, 3}));
    EXPECT_EQ(stage.box(red)->height, 11) << "neither is the resting edge of what moves";
  }
}

TEST(Frames, SpringsOfInvisibleLayersAskForNone) {
  Observed<double> width(100.0);
  Observed<double> opacity(0.0);
  Stage stage(Made{[&] {
    return zStack(Alignment::center, {box(red).frame(FrameSize{.width = width}).opacity(opacity),
                                      stroke(RoundedRectangle{width}, Color::white(0), 1)});
  }});
  stage.frame();
  withAnimation(spring, [&] { width = 200; });
  stage.frame();
  EXPECT_FALSE(stage.host->needsFrame());
  // It has moved all the same when it comes to be seen.
  stage.now = 60;
  opacity = 1;
  stage.frame();
  EXPECT_EQ(stage.box(red)->width, 200);
  EXPECT_FALSE(stage.host->needsFrame());
}

TEST(Frames, OvershootNeverLeavesWhatCanBeDrawn) {
  constexpr Spring bouncy{.response = 0.4, .dampingFraction = 0.1};
  Observed<bool> isOn(true);
  Stage stage(Made{[&] {
    return box(red.withOpacity(isOn ? 1 : 0.1))
        .padding({.leading = isOn ? 30.0 : 1.0, .trailing = isOn ? 30.0 : 1.0})
        .frame(FrameSize{.width = isOn ? 100.0 : 1.0, .height = isOn ? 100.0 : 0.0})
        .clipShape(RoundedRectangle{isOn ? 40.0 : 1.0})
        .opacity(isOn ? 1 : 0.1);
  }});
  stage.frame();
  for (const bool target : {false, true}) {
    withAnimation(bouncy, [&] { isOn = target; });
    for (int i = 0; i < 90; ++i) {
      stage.frameAt(stage.now + 1.0 / 60);
      for (const auto& item : stage.host->displayList()) {
        ASSERT_TRUE(0 <= item.color.alpha && item.color.alpha <= 1) << item.color.alpha;
        ASSERT_TRUE(item.bounds.width >= 0 && item.bounds.height >= 0);
      }
    }
  }
}

std::string shownTexts(const Stage& stage) {
  std::string all;
  for (const auto& item : stage.host->displayList())
    all += item.text + ':' + std::to_string(std::lround(item.color.alpha * 100)) + ' ';
  return all;
}

class Percentage : public testing::Test {
 protected:
  Observed<std::string> number{std::string("9%")};
  Observed<double> opacity{1.0};
  Stage stage{Made{[this] { return label(number).fixedSize().opacity(opacity); }}};
};

TEST_F(Percentage, TheOldLeavesBeforeTheNewComes) {
  stage.frame();
  withAnimation(spring, [&] { number = "10%"; });
  stage.frameAt(0.01);
  EXPECT_EQ(shownTexts(stage), "9%:54 ");
  const double end = stage.host->displayList()[0].bounds.maxX();
  stage.frameAt(0.06);
  EXPECT_EQ(shownTexts(stage), "10%:75 ");
  EXPECT_NEAR(stage.host->displayList()[0].bounds.maxX(), end, 1e-9);
  stage.framesUntilRest();
  EXPECT_EQ(shownTexts(stage), "10%:100 ");
}

TEST_F(Percentage, ANumberThatKeepsChangingStaysLegible) {
  stage.frame();
  std::string shown;
  for (int i = 1; i <= 9; ++i) {
    withAnimation(spring, [&] { number = std::to_string(i); });
    stage.frameAt(stage.now + 1.0 / 30);
    shown += shownTexts(stage);
  }
  EXPECT_EQ(shown, "1:25 2:82 3:99 4:100 5:100 6:100 7:100 8:100 9:100 ");
}

class SymbolSwap : public testing::Test {
 protected:
  /// The width of what is drawn, as a part of the whole symbol's.
  [[nodiscard]] double presence() const {
    Rect all;
    for (const auto& item : stage.host->displayList()) all = all.united(item.bounds);
    return all.width;
  }
  Observed<std::string> name{std::string("sun.max.fill")};
  Observed<double> opacity{1.0};
  Stage stage{Made{[this] {
    return symbol(name, Font{.size = 100}, Color::white()).fixedSize().opacity(opacity);
  }}};
};

TEST_F(SymbolSwap, TheOldLeavesBeforeTheNewComes) {
  stage.frame();
  const double large = presence();
  name = "sun.min.fill";
  stage.frame();
  stage.frameAt(0.02);
  EXPECT_LT(presence(), large);
  EXPECT_GT(presence(), 0.6 * large);
  const double before = presence();
  name = "speaker.fill";
  stage.frame();
  EXPECT_EQ(presence(), before) << "what leaves goes on leaving";
  EXPECT_GT(stage.framesUntilRest(), 5);
  const double last = presence();
  opacity = 0;
  stage.frame();
  name = "sun.max.fill";
  opacity = 1;
  stage.frame();
  EXPECT_FALSE(stage.host->needsFrame()) << "nobody saw the symbol before";
  EXPECT_NEAR(presence(), large, 1e-3);
  EXPECT_NE(last, large);
}

}  // namespace
}  // namespace valdrix::view
