#include <gmock/gmock.h>

#include <xcb/composite.h>
#include <xcb/shape.h>
#include <xcb/xfixes.h>

#include "desktop/x11/X11PanelWindow.h"
#include "tests/support/WaitFor.h"
#include "tests/x11/TestPanel.h"
#include "tests/x11/X11DeskWorld.h"
#include "view/Transaction.h"

namespace valdrix::tests {
namespace {

using Company = X11DeskWorld::Company;

// What only a real X server can show: places, pixels and who comes and goes.
class X11PanelWindowTest : public testing::Test {
 protected:
  void start(Company company = Company::nobody) {
    world = std::make_unique<X11DeskWorld>(company);
    panel = std::make_unique<TestPanel>(*world);
    panel->show();
  }
  desktop::X11PanelWindow& window() {
    return dynamic_cast<desktop::X11PanelWindow&>(*panel->window);
  }
  QRect place() {
    auto* connection = display().connection();
    const auto geometry = desktop::xcbOwned(xcb_get_geometry_reply(
        connection, xcb_get_geometry(connection, window().surface().window()), nullptr));
    return {geometry->x, geometry->y, geometry->width, geometry->height};
  }
  QString pixel(double dx, double down) {
    return display().screenshot().pixelColor(world->toDevice(panel->at(dx, down))).name();
  }
  bool shows(double dx, double down, const QString& color) {
    return waitFor([&] { return pixel(dx, down) == color; });
  }

  static inline const QString panels = "#ff0000";
  static inline const QString desktops = "#0000ff";
  std::unique_ptr<X11DeskWorld> world;
  std::unique_ptr<TestPanel> panel;
};

TEST_F(X11PanelWindowTest, LiesExactlyWhereItWasPutAndReachesBeyondTheScreen) {
  start(Company::windowManager);
  const auto screen = desktop::ScreenLayout::current().entries.front();
  const QRect expected((screen.device.width() - qRound(600 * screen.scale)) / 2, 0,
                       qRound(600 * screen.scale), qRound(1000 * screen.scale));
  EXPECT_EQ(place(), expected);
  EXPECT_GT(expected.height(), screen.device.height());
  EXPECT_EQ(window().surface().frame(), expected);
}

TEST_F(X11PanelWindowTest, StaysAboveAFullscreenWindowAndDoesNotTakeItsFocus) {
  start(Company::windowManager);
  world->hideBackground();
  const auto focus = [] {
    auto* connection = display().connection();
    return desktop::xcbOwned(
               xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr))
        ->focus;
  };
  ForeignWindow fullscreen({100, 100, 300, 200},
                           {.color = Qt::green, .isManaged = true, .isFullscreen = true});
  ASSERT_TRUE(shows(200, 16, "#00ff00"));
  EXPECT_EQ(pixel(0, 16), panels);
  world->move(panel->at(0, 100));
  display().click();
  ASSERT_TRUE(waitFor([&] { return focus() == fullscreen.window(); }));
  // The window manager hands the click on only after it has moved the focus.
  EXPECT_TRUE(waitFor([&] { return fullscreen.presses() == 1; }));
  panel->accept();
  world->move(panel->at(0, 16));
  display().click();
  world->settle();
  EXPECT_EQ(panel->clicks, 1);
  EXPECT_EQ(fullscreen.presses(), 1);
  EXPECT_EQ(focus(), fullscreen.window());
}

TEST_F(X11PanelWindowTest, IsCutOutWhereNothingCompositesAndFollowsWhatItShows) {
  start();
  EXPECT_EQ(pixel(0, 16), panels);
  EXPECT_EQ(pixel(0, 48), desktops);
  EXPECT_EQ(pixel(60, 16), desktops);
  panel->height = 64.0;
  EXPECT_TRUE(shows(0, 48, panels));
  EXPECT_EQ(pixel(60, 48), desktops);
  panel->height = 20.0;
  EXPECT_TRUE(shows(0, 48, desktops));
  EXPECT_EQ(pixel(0, 28), desktops);
  EXPECT_EQ(pixel(0, 16), panels);
}

// Compositors that show an X server's windows may take the whole window, whatever it leaves to
// those below.
TEST_F(X11PanelWindowTest, IsAsLargeAsWhatItShowsWhereSomethingComposites) {
  start(Company::compositor);
  const auto box = [&](int height) {
    // The pixels of its right and lower edges take the pointer, too.
    return QRect(world->toDevice(panel->at(-50, 0)), QSize(101, height + 1));
  };
  EXPECT_TRUE(waitFor([&] { return place() == box(32); }));
  view::withAnimation(view::Spring{.response = 0.2, .dampingFraction = 0.5},
                      [&] { panel->height = 300.0; });
  panel->track({100, 300});
  EXPECT_TRUE(place().contains(box(350))) << "at once for the whole way";
  EXPECT_TRUE(waitFor([&] { return place() == box(300); }));
  EXPECT_EQ(pixel(0, 299), panels);
  EXPECT_EQ(pixel(0, 301), desktops);
  panel->height = 32.0;
  panel->track({100, 32});
  EXPECT_TRUE(waitFor([&] { return place() == box(32); }));
  EXPECT_TRUE(shows(0, 48, desktops));
  EXPECT_EQ(pixel(0, 16), panels);
}

// Some compositing managers have a bar of their own, and take the pointer there from all windows.
TEST_F(X11PanelWindowTest, HearsOfThePointerOverACompositorsOwnBar) {
  start(Company::compositor);
  auto* connection = display().connection();
  const auto overlay = desktop::xcbOwned(xcb_composite_get_overlay_window_reply(
      connection, xcb_composite_get_overlay_window(connection, display().root()), nullptr));
  ASSERT_TRUE(overlay);
  const xcb_rectangle_t bar{0, 0, static_cast<std::uint16_t>(display().size().width()), 40};
  xcb_shape_rectangles(connection, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT, XCB_CLIP_ORDERING_UNSORTED,
                       overlay->overlay_win, 0, 0, 1, &bar);
  (void)display().pointer();
  panel->window->orderOut();
  panel->show();
  int moves = 0;
  const auto count = [&] { ++moves; };
  const auto global = world->pointer().addGlobalMonitorForEventsMatchingMask(1U << 5, count);
  world->move(panel->at(0, 16));
  EXPECT_EQ(std::exchange(moves, 0), 1);
  world->move(panel->at(5, 16));
  EXPECT_EQ(std::exchange(moves, 0), 1);
  world->move(panel->at(0, 200));
  EXPECT_EQ(std::exchange(moves, 0), 1) << "the way out";
  int events = 0;
  const auto token =
      world->desktop().connection.addEventHandler([&](const xcb_generic_event_t&) { ++events; });
  for (int i = 0; i < 20; ++i) world->move(panel->at(i, 300));
  EXPECT_EQ(events, 0) << "elsewhere";
  xcb_shape_rectangles(connection, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT, XCB_CLIP_ORDERING_UNSORTED,
                       overlay->overlay_win, 0, 0, 0, nullptr);
  xcb_composite_release_overlay_window(connection, display().root());
  (void)display().pointer();
}

TEST_F(X11PanelWindowTest, FollowsACompositorThatStartsAndEnds) {
  start();
  for (int round = 0; round < 2; ++round) {
    ASSERT_TRUE(display().startCompositor());
    ASSERT_TRUE(waitFor([&] { return world->desktop().compositing.isActive(); }));
    EXPECT_TRUE(shows(0, 16, panels));
    EXPECT_TRUE(shows(60, 16, desktops));
    // Nothing is cut out now, so that edges are blended.
    auto* connection = display().connection();
    const auto extents = desktop::xcbOwned(xcb_shape_query_extents_reply(
        connection, xcb_shape_query_extents(connection, window().surface().window()), nullptr));
    EXPECT_FALSE(extents->bounding_shaped);
    panel->height = 64.0 + round;
    EXPECT_TRUE(shows(0, 48, panels));
    display().stopCompositor();
    ASSERT_TRUE(waitFor([&] { return !world->desktop().compositing.isActive(); }));
    EXPECT_TRUE(shows(0, 48, panels));
    EXPECT_TRUE(shows(60, 16, desktops));
    panel->height = 32.0;
    EXPECT_TRUE(shows(0, 48, desktops));
  }
}

TEST_F(X11PanelWindowTest, RepaintsWhatAWindowAboveHadHidden) {
  start();
  auto menu = std::make_unique<ForeignWindow>(QRect(QPoint(), display().size()),
                                              ForeignWindow::Options{.color = Qt::green});
  EXPECT_TRUE(shows(0, 16, "#00ff00"));
  const auto frames = window().framesDrawn();
  menu.reset();
  EXPECT_TRUE(shows(0, 16, panels));
  EXPECT_EQ(window().framesDrawn(), frames) << "the picture was kept";
}

// A menu that opens over a panel under a resting pointer, or closes there, is no motion; a pointer
// that went away over the menu is heard of, and so is one that comes in where the menu was.
TEST_F(X11PanelWindowTest, HearsOfAPointerThatLeftUnderAnotherWindow) {
  start();
  panel->accept();
  int moves = 0;
  const auto count = [&] { ++moves; };
  const auto global = world->pointer().addGlobalMonitorForEventsMatchingMask(1U << 5, count);
  const auto local = world->pointer().addLocalMonitorForEventsMatchingMask(1U << 5, count);
  world->move(panel->at(0, 16));
  EXPECT_EQ(std::exchange(moves, 0), 1);
  const QRect area(world->toDevice(panel->at(-250, 0)), world->toDevice(panel->at(250, 300)));
  auto menu = std::make_unique<ForeignWindow>(
      area, ForeignWindow::Options{.color = Qt::green, .type = "POPUP_MENU"});
  world->settle();
  EXPECT_EQ(moves, 0) << "covered";
  world->move(panel->at(0, 200));
  EXPECT_EQ(std::exchange(moves, 0), 1) << "the way out";
  world->move(panel->at(0, 220));
  EXPECT_EQ(moves, 0) << "elsewhere";
  world->move(panel->at(0, 20));
  EXPECT_EQ(moves, 0) << "over the menu";
  menu.reset();
  world->settle();
  EXPECT_EQ(moves, 0) << "uncovered";
  world->move(panel->at(0, 21));
  EXPECT_EQ(moves, 1);
}

// Screens change under the pointer, which is gone before the new panel can see it.
TEST_F(X11PanelWindowTest, HearsOfAPointerThatLeftBeforeItWasShown) {
  start();
  panel->accept();
  world->move(panel->at(0, 16));
  panel->window->orderOut();
  world->settle();
  world->move(panel->at(0, 200));
  int moves = 0;
  const auto global =
      world->pointer().addGlobalMonitorForEventsMatchingMask(1U << 5, [&] { ++moves; });
  panel->window->orderFrontRegardless();
  EXPECT_TRUE(waitFor([&] { return moves == 1; }));
}

TEST_F(X11PanelWindowTest, ShowsAHandWhereAsked) {
  start();
  panel->accept();
  world->move(panel->at(0, 16));
  world->cursor().pushPointingHand();
  world->cursor().pushPointingHand();
  const auto shape = [] {
    auto* connection = display().connection();
    const auto image = desktop::xcbOwned(xcb_xfixes_get_cursor_image_reply(
        connection, xcb_xfixes_get_cursor_image(connection), nullptr));
    return image ? image->cursor_serial : 0;
  };
  (void)desktop::xcbOwned(xcb_xfixes_query_version_reply(
      display().connection(), xcb_xfixes_query_version(display().connection(), 5, 0), nullptr));
  const auto hand = shape();
  world->cursor().pop();
  world->settle();
  EXPECT_EQ(shape(), hand);
  world->cursor().pop();
  world->settle();
  const auto arrow = shape();
  EXPECT_NE(arrow, hand);
  world->cursor().pop();
  world->cursor().pushPointingHand();
  world->settle();
  EXPECT_EQ(shape(), hand) << "a pop too many took nothing";
}

}  // namespace
}  // namespace valdrix::tests
