#include "tests/x11/TestPanel.h"
#include "view/Transaction.h"

namespace valdrix::tests {
namespace {

/// What every panel window does, whatever the desktop.
class PanelWindowContract : public testing::TestWithParam<std::string> {
 protected:
  std::unique_ptr<DeskWorld> world = makeDeskWorld(GetParam());
};
INSTANTIATE_TEST_SUITE_P(On, PanelWindowContract, testing::ValuesIn(deskWorldNames()),
                         deskWorldName);

TEST_P(PanelWindowContract, AcceptsClicksOnlyInsideTheTrackedRectangle) {
  TestPanel panel(*world);
  panel.show();
  panel.accept();
  const struct {
    double dx, down;
    bool isPanels;
  } places[] = {{0, 16, true},    {-50, 16, true}, {50, 16, true}, {0, 0, true},   {0, 32, true},
                {-51, 16, false}, {51, 16, false}, {0, 33, false}, {0, 300, false}};
  for (const auto& place : places) {
    SCOPED_TRACE(testing::Message() << place.dx << ',' << place.down);
    world->move(panel.at(place.dx, place.down));
    EXPECT_NE(world->clickReachesDesktop(), place.isPanels);
  }
  panel.track({0, 0});
  world->move(panel.at(0, 0));
  EXPECT_TRUE(world->clickReachesDesktop()) << "nothing is inside an empty one";
}

TEST_P(PanelWindowContract, LetsEverythingThroughWhileItIgnoresTheMouse) {
  TestPanel panel(*world);
  panel.show();
  EXPECT_TRUE(panel.window->ignoresMouseEvents());
  for (const double dx : {0.0, 10.0, 20.0}) {
    world->move(panel.at(dx, 16));
    EXPECT_NE(world->clickReachesDesktop(), world->noticesRegionsOnlyOnMotion()) << dx;
  }
  EXPECT_EQ(panel.clicks, 0);
  EXPECT_FALSE(panel.isHovered);
  if (world->noticesRegionsOnlyOnMotion()) return;
  panel.accept();
  EXPECT_FALSE(world->clickReachesDesktop());
  panel.accept(false);
  EXPECT_TRUE(world->clickReachesDesktop());
}

TEST_P(PanelWindowContract, GivesItsContentThePointer) {
  TestPanel panel(*world);
  panel.show();
  panel.accept();
  world->move(panel.at(0, 16));
  EXPECT_TRUE(panel.isHovered);
  EXPECT_FALSE(world->clickReachesDesktop());
  EXPECT_EQ(panel.clicks, 1);
  world->move(panel.at(200, 16));
  EXPECT_FALSE(panel.isHovered);
  world->move(panel.at(0, 16));
  EXPECT_TRUE(panel.isHovered);
  panel.accept(false);
  EXPECT_FALSE(panel.isHovered);
}

TEST_P(PanelWindowContract, ShowsNothingAndTakesNothingWhenHidden) {
  TestPanel panel(*world);
  panel.accept();
  world->move(panel.at(0, 16));
  EXPECT_TRUE(world->clickReachesDesktop()) << "before it was shown";
  panel.show();
  world->move(panel.at(1, 16));
  EXPECT_FALSE(world->clickReachesDesktop());
  panel.window->orderOut();
  world->settle();
  world->move(panel.at(2, 16));
  EXPECT_TRUE(world->clickReachesDesktop());
  EXPECT_FALSE(panel.isHovered);
  panel.show();
  world->move(panel.at(3, 16));
  EXPECT_FALSE(world->clickReachesDesktop());
  panel.window.reset();
  world->settle();
  world->move(panel.at(4, 16));
  EXPECT_TRUE(world->clickReachesDesktop()) << "after it is gone";
}

// What grows over a resting pointer is not under it before it moves, and what shrinks away from it
// still is.
TEST_P(PanelWindowContract, ChangesUnderARestingPointerWaitForItsNextMotion) {
  TestPanel panel(*world);
  panel.show();
  world->move(panel.at(0, 60));
  panel.accept();
  panel.track({100, 100});
  EXPECT_TRUE(world->clickReachesDesktop());
  world->move(panel.at(1, 60));
  EXPECT_FALSE(world->clickReachesDesktop());
  panel.track({100, 32});
  EXPECT_FALSE(world->clickReachesDesktop());
  world->move(panel.at(2, 60));
  EXPECT_TRUE(world->clickReachesDesktop());
}

TEST_P(PanelWindowContract, DrawsOnlyWhatChanges) {
  TestPanel panel(*world);
  panel.show();
  ASSERT_TRUE(world->runUntilStill(*panel.content));
  const auto first = world->framesDrawn(*panel.window);
  EXPECT_GE(first, 1U);
  panel.height = 32.0;
  world->move(panel.at(0, 16));
  ASSERT_TRUE(world->runUntilStill(*panel.content));
  EXPECT_EQ(world->framesDrawn(*panel.window), first) << "nothing looks different";
  panel.height = 64.0;
  ASSERT_TRUE(world->runUntilStill(*panel.content));
  EXPECT_EQ(world->framesDrawn(*panel.window), first + 1) << "one change, one frame";
  view::withAnimation(view::EaseOut{0.2}, [&] { panel.height = 96.0; });
  ASSERT_TRUE(world->runUntilStill(*panel.content));
  const auto moving = world->framesDrawn(*panel.window) - first - 1;
  EXPECT_GT(moving, 1U);
  // A fifth of a second at the sixty or so refreshes of a screen, and not as fast as it goes.
  EXPECT_LE(moving, 16U);
}

TEST_P(PanelWindowContract, ContentCanBeReplacedOrTakenAway) {
  TestPanel panel(*world);
  panel.show();
  panel.accept();
  world->move(panel.at(0, 16));
  panel.window->setContentView(nullptr);
  EXPECT_FALSE(panel.isHovered);
  EXPECT_FALSE(world->clickReachesDesktop()) << "still a window";
  EXPECT_EQ(panel.clicks, 0);
  panel.content.reset();
  TestPanel other(*world);
  panel.window->setContentView(other.content.get());
  ASSERT_TRUE(world->runUntilStill(*other.content));
  world->move(panel.at(1, 16));
  EXPECT_FALSE(world->clickReachesDesktop());
  EXPECT_EQ(other.clicks, 1);
  panel.window.reset();
}

}  // namespace
}  // namespace valdrix::tests
