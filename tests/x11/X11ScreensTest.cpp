#include <gmock/gmock.h>

#include <QGuiApplication>
#include <QScreen>

#include "tests/support/WaitFor.h"
#include "tests/x11/TestPanel.h"
#include "tests/x11/X11DeskWorld.h"

namespace valdrix::tests {
namespace {

// The program's answer to a change of screens: a new panel where the main screen is now.
class X11ScreenChanges : public testing::Test {
 protected:
  X11ScreenChanges() {
    rebuild();
    token = world.screens().observeChanges([this] {
      ++changes;
      rebuild();
    });
  }
  void rebuild() {
    panel.reset();
    if (!world.screens().mainScreen()) return;
    panel = std::make_unique<TestPanel>(world);
    panel->window->orderFrontRegardless();
  }
  QString pixel(view::Point at) {
    return display().screenshot().pixelColor(world.toDevice(at)).name();
  }

  X11DeskWorld world;
  std::unique_ptr<TestPanel> panel;
  int changes = 0;
  Token token;
};

TEST_F(X11ScreenChanges, SurvivesAHundredOfThem) {
  for (int i = 0; i < 34; ++i) {
    world.setMonitors({{"A", 400 + i, 300}, {"B", 320, 200}});
    world.setMonitors({{"A", 400 + i, 300}});
    world.setMonitors({{"B", 340, 250}, {"A", 360, 300}});
  }
  EXPECT_GE(changes, 100);
  ASSERT_TRUE(panel);
  EXPECT_TRUE(waitFor([&] { return pixel(panel->at(0, 16)) == "#ff0000"; }));
  const auto main = *world.screens().mainScreen();
  EXPECT_EQ(main.frame.size(), (view::Size{340, 250}));
}

TEST_F(X11ScreenChanges, OneArrangementIsToldOnce) {
  world.setMonitors({{"A", 400, 300}});
  changes = 0;
  world.setMonitors({{"A", 400, 300}, {"B", 320, 200}});
  EXPECT_EQ(changes, 1);
}

TEST_F(X11ScreenChanges, ThePanelIsWhereItsScreenIs) {
  world.setMonitors({{"A", 700, 300}, {"B", 320, 200}});
  const auto second = world.screens().screens().at(1).frame;
  platform::PanelConfiguration configuration;
  const auto window = world.panelWindows().makeWindow(
      {second.midX() - 50, second.maxY() - 400, 100, 400}, configuration);
  const auto& frame = dynamic_cast<desktop::X11PanelWindow&>(*window).deviceFrame();
  const auto entry = desktop::ScreenLayout::current().entries.at(1);
  EXPECT_EQ(frame.top(), entry.device.top());
  EXPECT_EQ(frame.center().x(), entry.device.center().x());
}

}  // namespace
}  // namespace valdrix::tests
