#include <gmock/gmock.h>

#include "tests/x11/TestPanel.h"

namespace valdrix::tests {
namespace {

using platform::eventMask::leftMouseDragged;
using platform::eventMask::mouseMoved;
using platform::eventMask::rightMouseDragged;
using testing::ElementsAre;
using testing::IsEmpty;

/// What every pointer does, whatever the desktop.
class PointerContract : public testing::TestWithParam<std::string> {
 protected:
  PointerContract() {
    panel.show();
    for (const auto kind : {mouseMoved, leftMouseDragged, rightMouseDragged}) {
      tokens.push_back(world->pointer().addGlobalMonitorForEventsMatchingMask(
          kind, [this, kind] { heard.push_back("global " + name(kind)); }));
      tokens.push_back(world->pointer().addLocalMonitorForEventsMatchingMask(
          kind, [this, kind] { heard.push_back("local " + name(kind)); }));
    }
  }

  static std::string name(std::uint32_t kind) {
    return kind == mouseMoved ? "move" : kind == leftMouseDragged ? "drag" : "right drag";
  }
  std::vector<std::string> listen() { return std::exchange(heard, {}); }
  std::vector<std::string> move(double dx, double down) {
    world->move(panel.at(dx, down));
    return listen();
  }

  std::unique_ptr<DeskWorld> world = makeDeskWorld(GetParam());
  TestPanel panel{*world};
  std::vector<std::string> heard;
  std::vector<Token> tokens;
};
INSTANTIATE_TEST_SUITE_P(On, PointerContract, testing::ValuesIn(deskWorldNames()), deskWorldName);

TEST_P(PointerContract, ReportsCrossingsAndMotionInside) {
  move(0, 200);
  EXPECT_THAT(move(0, 16), ElementsAre("global move")) << "to the desktop: the panel ignores it";
  EXPECT_THAT(move(5, 16), ElementsAre("global move"));
  panel.accept();
  EXPECT_THAT(listen(), IsEmpty()) << "nothing moved";
  EXPECT_THAT(move(9, 16), ElementsAre("local move"));
  EXPECT_THAT(move(0, 200), ElementsAre("global move"));
}

TEST_P(PointerContract, KnowsWhereThePointerIsEverywhere) {
  const struct {
    view::Point place;
    bool isInside;
  } rows[] = {{panel.at(0, 0), true},
              {panel.at(0, 32), true},
              {panel.at(-300, 333), false},
              {panel.at(299, 5), false}};
  for (const auto& row : rows) {
    world->move(row.place);
    const auto location = world->pointer().mouseLocation();
    if (row.isInside || !world->hearsOnlyOfItsOwnWindows())
      EXPECT_EQ(location, row.place);
    else
      EXPECT_FALSE(
          (view::Rect{panel.at(-50, 32).x, panel.at(-50, 32).y, 100, 32}).contains(location))
          << "somewhere else";
  }
}

TEST_P(PointerContract, NothingThatChangesUnderARestingPointerIsMotion) {
  move(0, 60);
  panel.track({100, 100});
  EXPECT_THAT(listen(), IsEmpty()) << "grown over it";
  panel.accept();
  EXPECT_THAT(move(0, 61), ElementsAre("local move"));
  panel.track({100, 32});
  EXPECT_THAT(listen(), IsEmpty()) << "shrunk away from it";
  EXPECT_THAT(move(250, 300), ElementsAre("global move")) << "its way out, and be it a jump";
  move(0, 62);
  panel.track({100, 100});
  panel.window->orderOut();
  world->settle();
  panel.show();
  EXPECT_THAT(listen(), IsEmpty()) << "hidden and shown";
  TestPanel other(*world);
  other.track({100, 100});
  other.show();
  EXPECT_THAT(listen(), IsEmpty()) << "a new window";
}

class PointerDragContract : public PointerContract {};
// There are desktops on which no program hears of another's drags.
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(PointerDragContract);
INSTANTIATE_TEST_SUITE_P(On, PointerDragContract, testing::ValuesIn(dragWorldNames()),
                         deskWorldName);

TEST_P(PointerDragContract, HearsDragsOfOtherPrograms) {
  panel.accept();
  move(0, 200);
  world->drag({panel.at(0, 100), panel.at(0, 20), panel.at(0, 10), panel.at(0, 100)}, false);
  EXPECT_THAT(listen(), ElementsAre("global drag", "global drag", "global drag"));
  world->drag({panel.at(0, 20), panel.at(0, 150)}, true);
  EXPECT_THAT(listen(), ElementsAre("global right drag", "global right drag"));
}

TEST_P(PointerContract, ADragThatEndsInsideLeavesOnAnOrdinaryWay) {
  panel.accept();
  move(0, 200);
  world->drag({panel.at(0, 20)}, false);
  listen();
  EXPECT_THAT(move(0, 21), ElementsAre("local move"));
  EXPECT_THAT(move(0, 150), ElementsAre("global move"));
}

TEST_P(PointerContract, MonitorsEndWithTheirTokens) {
  tokens.clear();
  EXPECT_THAT(move(0, 16), IsEmpty());
  int count = 0;
  Token self = world->pointer().addGlobalMonitorForEventsMatchingMask(mouseMoved, [&] {
    ++count;
    self.reset();
  });
  move(0, 17);
  move(0, 18);
  EXPECT_EQ(count, 1) << "a monitor that ends itself";
}

}  // namespace
}  // namespace valdrix::tests
