#include <gmock/gmock.h>

#include "tests/x11/DeskWorld.h"

namespace valdrix::tests {
namespace {

/// What every list of screens does, whatever the desktop.
class ScreensContract : public testing::TestWithParam<std::string> {
 protected:
  std::vector<std::string> names() {
    std::vector<std::string> names;
    for (const auto& screen : world->screens().screens()) names.push_back(screen.name);
    return names;
  }

  std::unique_ptr<DeskWorld> world = makeDeskWorld(GetParam());
};
INSTANTIATE_TEST_SUITE_P(On, ScreensContract, testing::ValuesIn(screenWorldNames()), deskWorldName);

TEST_P(ScreensContract, TheMainScreenHasTheOrigin) {
  const auto main = world->screens().mainScreen();
  ASSERT_TRUE(main);
  EXPECT_EQ(main->frame.origin(), (view::Point{0, 0}));
  EXPECT_GT(main->scale, 0);
  EXPECT_EQ(main->safeAreaInsetTop, 0);
  EXPECT_FALSE(main->auxiliaryTopLeftArea);
  EXPECT_EQ(world->screens().screens().front(), *main);
}

TEST_P(ScreensContract, TellsOfScreensThatComeGoAndChange) {
  int changes = 0;
  std::size_t seen = 0;
  auto token = world->screens().observeChanges([&] {
    ++changes;
    seen = world->screens().screens().size();
  });
  world->setMonitors({{"A", 400, 300}, {"B", 320, 200}});
  EXPECT_GE(changes, 1);
  EXPECT_EQ(seen, 2U) << "up to date when told";
  EXPECT_THAT(names(), testing::ElementsAre(world->nameOf("A"), world->nameOf("B")));
  const auto screens = world->screens().screens();
  EXPECT_EQ(screens[0].frame, (view::Rect{0, 0, 400, 300}));
  EXPECT_EQ(screens[1].frame.size(), (view::Size{320, 200}));
  EXPECT_EQ(screens[1].frame.maxY(), 300) << "tops on one line, y upwards";
  EXPECT_GE(screens[1].frame.minX(), 400);

  changes = 0;
  world->setMonitors({{"A", 400, 300}});
  EXPECT_GE(changes, 1);
  EXPECT_EQ(seen, 1U);
  EXPECT_EQ(world->screens().mainScreen()->name, world->nameOf("A"));

  changes = 0;
  world->setMonitors({{"A", 400, 300}});
  EXPECT_EQ(changes, 0) << "nothing is different";
  token.reset();
  world->setMonitors({{"B", 320, 200}});
  EXPECT_EQ(changes, 0) << "nobody listens any more";
}

TEST_P(ScreensContract, ThereMayBeNone) {
  int changes = 0;
  const auto token = world->screens().observeChanges([&] { ++changes; });
  world->setMonitors({});
  EXPECT_GE(changes, 1);
  EXPECT_FALSE(world->screens().mainScreen());
  changes = 0;
  world->setMonitors({{"A", 400, 300}});
  EXPECT_GE(changes, 1);
  EXPECT_TRUE(world->screens().mainScreen());
}

}  // namespace
}  // namespace valdrix::tests
