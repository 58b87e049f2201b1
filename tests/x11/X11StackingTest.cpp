#include <algorithm>
#include <gtest/gtest.h>
#include <span>
#include <vector>

#include <QElapsedTimer>

#include "desktop/x11/X11PanelWindow.h"
#include "tests/support/WaitFor.h"
#include "tests/x11/TestPanel.h"
#include "tests/x11/X11DeskWorld.h"

namespace valdrix::tests {
namespace {

using Company = X11DeskWorld::Company;

/// Who is in front when another program's unmanaged window opens at the panel's place.
class X11Stacking : public testing::TestWithParam<Company> {
 protected:
  X11Stacking() { panel.show(); }

  /// Whether the panel is above `other`, after it has had a look at what came.
  bool isInFrontOf(const ForeignWindow& other) {
    world.settle();
    auto* connection = display().connection();
    const auto tree = desktop::xcbOwned(
        xcb_query_tree_reply(connection, xcb_query_tree(connection, display().root()), nullptr));
    const std::span windows(xcb_query_tree_children(tree.get()), tree->children_len);
    return std::ranges::find(windows, panelWindow()) > std::ranges::find(windows, other.window());
  }
  xcb_window_t panelWindow() {
    return dynamic_cast<desktop::X11PanelWindow&>(*panel.window).surface().window();
  }
  std::unique_ptr<ForeignWindow> open(const QRect& frame, const char* type) {
    return std::make_unique<ForeignWindow>(
        frame, ForeignWindow::Options{.color = Qt::green, .type = type});
  }

  X11DeskWorld world{GetParam()};
  TestPanel panel{world};
  const QRect panelArea{world.toDevice(panel.at(-150, 0)), world.toDevice(panel.at(150, 80))};
};
INSTANTIATE_TEST_SUITE_P(With, X11Stacking, testing::Values(Company::nobody, Company::compositor),
                         [](const auto& company) {
                           return company.param == Company::nobody ? "NoCompositor" : "Compositor";
                         });

TEST_P(X11Stacking, ComesBackAboveBarsAndOverlays) {
  for (const char* type : {"DOCK", "UTILITY", static_cast<const char*>(nullptr)}) {
    SCOPED_TRACE(type ? type : "no type");
    const auto other = open(panelArea, type);
    EXPECT_TRUE(waitFor([&] { return isInFrontOf(*other); }));
  }
  panel.accept();
  world.move(panel.at(0, 16));
  EXPECT_FALSE(world.clickReachesDesktop());
  EXPECT_EQ(panel.clicks, 1) << "so does what takes the clicks";
}

TEST_P(X11Stacking, LeavesMenusAndScreenLockersInFront) {
  const QRect everything(QPoint(), display().size());
  const struct {
    const char* type;
    QRect frame;
  } others[] = {{"POPUP_MENU", panelArea},
                {"DROPDOWN_MENU", panelArea},
                {"TOOLTIP", panelArea},
                {"NOTIFICATION", panelArea},
                {nullptr, everything}};
  for (const auto& other : others) {
    SCOPED_TRACE(other.type ? other.type : "screen locker");
    const auto window = open(other.frame, other.type);
    EXPECT_FALSE(isInFrontOf(*window));
  }
}

TEST_P(X11Stacking, ComesBackAboveAFrameThatIsBornOverAWholeScreen) {
  const ForeignWindow frame(QRect(QPoint(), display().size()),
                            {.color = Qt::green, .hasManagedChild = true});
  EXPECT_TRUE(waitFor([&] { return isInFrontOf(frame); }));
}

TEST_P(X11Stacking, ComesBackWhenWhatHeldItBackIsGone) {
  auto menu = open(panelArea, "POPUP_MENU");
  const auto bar = open(panelArea, "DOCK");
  EXPECT_FALSE(isInFrontOf(*menu));
  EXPECT_FALSE(isInFrontOf(*bar));
  menu.reset();
  EXPECT_TRUE(waitFor([&] { return isInFrontOf(*bar); }));
}

// A window that rises all the time may have its way for most of a time, but not for ever.
TEST_P(X11Stacking, RaisesSeldomAgainstAWindowThatKeepsRisingAndComesBackAfterwards) {
  constexpr int perTime = 250;
  std::vector<qint64> raises;
  QElapsedTimer clock;
  clock.start();
  const auto other = open(panelArea, "DOCK");
  panel.window->orderOut();
  desktop::X11Connection connection;
  desktop::X11WindowNews news(connection, 0);
  desktop::X11StackingGuard guard(
      connection, news,
      [&] {
        raises.push_back(clock.elapsed());
        const std::uint32_t below = XCB_STACK_MODE_BELOW;
        xcb_configure_window(display().connection(), other->window(), XCB_CONFIG_WINDOW_STACK_MODE,
                             &below);
        (void)display().pointer();
      },
      {.betweenRaises = 0, .raisesAgainstOneWindow = 3, .perTime = perTime});
  auto* shared = display().connection();
  const auto stacking = [&](xcb_stack_mode_t mode) {
    const std::uint32_t value = mode;
    xcb_configure_window(shared, other->window(), XCB_CONFIG_WINDOW_STACK_MODE, &value);
    (void)display().pointer();
    world.settle();
  };
  panel.show();
  stacking(XCB_STACK_MODE_BELOW);
  guard.start(panelWindow(), XCB_WINDOW_NONE, panelArea, QRect(QPoint(), display().size()));
  while (clock.elapsed() < 3 * perTime) stacking(XCB_STACK_MODE_ABOVE);
  ASSERT_GT(raises.size(), 3U);
  // Two clocks that cut off parts of milliseconds may differ by one.
  for (std::size_t i = 3; i < raises.size(); ++i) EXPECT_GE(raises[i] - raises[i - 3], perTime - 1);
  EXPECT_TRUE(waitFor([&] { return isInFrontOf(*other); })) << "nothing happens any more";
}

}  // namespace
}  // namespace valdrix::tests
