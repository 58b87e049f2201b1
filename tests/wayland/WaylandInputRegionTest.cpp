// What compositors of both kinds send: those that look at where the pointer is when a surface
// changes, and those that look only when it moves.

#include <gmock/gmock.h>
#include <string>
#include <vector>

#include <linux/input-event-codes.h>

#include "desktop/wayland/WaylandInputRegion.h"

namespace valdrix::tests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A region of 100 by 32 on no compositor at all: the test says what one would.
class WaylandInputRegionTest : public testing::Test {
 protected:
  WaylandInputRegionTest() {
    const auto all = ~std::uint32_t{0};
    tokens.push_back(pointer.addGlobalMonitorForEventsMatchingMask(
        all, [this] { heard.emplace_back("global"); }));
    tokens.push_back(
        pointer.addLocalMonitorForEventsMatchingMask(all, [this] { heard.emplace_back("local"); }));
    region.setRectangle(QRect(0, 0, 100, 32));
    region.show();
    region.committed();
    settle();
  }
  std::vector<std::string> listen() { return std::exchange(heard, {}); }
  void settle() {
    for (const auto& block : std::exchange(waiting, {})) block();
  }
  void grow(int height) {
    region.setRectangle(QRect(0, 0, 100, height));
    region.committed();
  }

  std::vector<std::string> heard;
  std::vector<Token> tokens;
  std::vector<std::function<void()>> waiting;
  int presses = 0;
  desktop::WaylandConnection connection;
  desktop::WaylandPointer pointer;
  desktop::WaylandInputRegion region{
      connection,
      pointer,
      {.moved = [](std::optional<QPointF>, bool) {},
       .pressed = [this](QPointF, bool isPressed) { presses += isPressed ? 1 : 0; },
       .menuRequested = [](QPointF) {},
       .changed = [] {},
       .afterSettling =
           [this](std::function<void()> block) { waiting.push_back(std::move(block)); },
       .locate =
           [](QPointF position) {
             return view::Point{position.x(), -position.y()};
           },
       .locateElsewhere =
           [](view::Point last) {
             return view::Point{last.x, -1000};
           }}};
};

TEST_F(WaylandInputRegionTest, AnEnterThatGrowingCausesIsNoMotion) {
  grow(68);
  region.entered({50, 60});
  EXPECT_THAT(listen(), IsEmpty());
  EXPECT_EQ(pointer.mouseLocation(), (view::Point{50, -60})) << "known all the same";
  region.committed();
  region.left();
  settle();
  EXPECT_THAT(listen(), IsEmpty()) << "there is a hole under it";
  region.entered({51, 60});
  EXPECT_THAT(listen(), ElementsAre("local"));
}

TEST_F(WaylandInputRegionTest, AHoleUnderThePointerIsNoWayOut) {
  region.setIgnoresMouseEvents(true);
  region.entered({50, 10});
  EXPECT_THAT(listen(), ElementsAre("global"));
  region.committed();
  region.left();
  settle();
  EXPECT_THAT(listen(), IsEmpty()) << "the hole took it away";
  region.setIgnoresMouseEvents(false);
  region.committed();
  region.entered({50, 10});
  EXPECT_THAT(listen(), IsEmpty()) << "and gave it back";
  region.button(BTN_LEFT, true);
  EXPECT_EQ(presses, 1);
  region.left();
  EXPECT_THAT(listen(), ElementsAre("global"));
  EXPECT_EQ(pointer.mouseLocation(), (view::Point{50, -1000}));
}

TEST_F(WaylandInputRegionTest, AShrunkRegionIsLeftOnce) {
  region.entered({50, 20});
  listen();
  grow(10);
  EXPECT_THAT(listen(), IsEmpty());
  region.moved({50, 21});
  region.left();
  EXPECT_THAT(listen(), ElementsAre("global"));
}

// A compositor that arranges its screens anew may move the pointer as well.
TEST_F(WaylandInputRegionTest, APointerThatIsNotThereWhenThePanelIsBackHasLeft) {
  for (const bool isBack : {true, false}) {
    region.entered({50, 20});
    listen();
    region.hide();
    region.show();
    region.committed();
    if (isBack) region.entered({50, 20});
    settle();
    EXPECT_EQ(listen().empty(), isBack);
    EXPECT_EQ(pointer.mouseLocation(), (view::Point{50, isBack ? -20.0 : -1000.0}));
  }
}

// A quick pointer has left the collapsed panel when the expanded one is not there yet.
TEST_F(WaylandInputRegionTest, APointerThatLeftWhileItGrewMayBeInWhatItGrewBy) {
  region.entered({50, 20});
  listen();
  grow(200);
  region.left();
  EXPECT_THAT(listen(), IsEmpty());
  region.entered({50, 90});
  settle();
  EXPECT_THAT(listen(), ElementsAre("local"));
  grow(300);
  region.left();
  settle();
  EXPECT_THAT(listen(), ElementsAre("global")) << "it is not";
}

}  // namespace
}  // namespace valdrix::tests
