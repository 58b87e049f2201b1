#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QImage>

#include "tests/support/WaitFor.h"
#include "tests/wayland/WaylandDeskWorld.h"
#include "tests/x11/TestPanel.h"
#include "view/Transaction.h"

namespace valdrix::tests {
namespace {

using Monitors = WaylandDeskWorld::Monitors;

bool isMapped(const TestPanel& panel) {
  return dynamic_cast<desktop::WaylandPanelWindow&>(*panel.window).isMapped();
}

TEST(WaylandPanel, IsSharpAtEveryScale) {
  for (const int scale : {1, 2}) {
    WaylandDeskWorld world;
    ASSERT_TRUE(world.compositor().command("output HEADLESS-1 scale " + std::to_string(scale)));
    ASSERT_TRUE(waitFor([&] { return world.screens().mainScreen()->scale == scale; }));
    TestPanel panel(world);
    panel.height = 32.5;
    panel.show();
    ASSERT_TRUE(world.runUntilStill(*panel.content));
    const auto isRed = [&](int y) {
      return world.compositor().screenshot().pixelColor(750, y) == QColor(Qt::red);
    };
    // Half a point is a pixel of its own at two pixels a point, and rounded at one.
    const int rows = scale == 1 ? 33 : 65;
    EXPECT_TRUE(waitFor([&] { return isRed(0); }));
    EXPECT_TRUE(isRed(rows - 1));
    EXPECT_FALSE(isRed(rows));
  }
}

TEST(WaylandPanel, PointerElsewhereCostsNothing) {
  WaylandDeskWorld world;
  TestPanel panel(world);
  panel.show();
  ASSERT_TRUE(world.runUntilStill(*panel.content));
  const auto hasEvents = [] {
    return QAbstractEventDispatcher::instance()->processEvents(QEventLoop::AllEvents);
  };
  // Something else may happen at the same time, but not each time.
  const auto costsNothing = [&] {
    if (!waitFor([&] { return !hasEvents(); })) return false;
    for (int step = 0; step < 100; ++step) world.client().movePointer({100.0 + step, 500});
    return !hasEvents();
  };
  int tries = 0;
  while (tries < 10 && !costsNothing()) ++tries;
  EXPECT_LT(tries, 10);
}

TEST(WaylandPanel, FollowsItsOutputsThroughAHundredChanges) {
  WaylandDeskWorld world(Monitors::movable);
  for (int round = 0; round < 50; ++round) {
    world.setMonitors({});
    world.setMonitors({{"A", 800, 600}});
    TestPanel panel(world);
    panel.show();
    // Sometimes the output goes before the panel stands there.
    if (round % 2 == 0) {
      ASSERT_TRUE(waitFor([&] { return isMapped(panel); }));
    }
    world.setMonitors({});
    EXPECT_TRUE(waitFor([&] { return !isMapped(panel); }));
  }
}

TEST(WaylandPanel, OutlivesItsCompositor) {
  WaylandDeskWorld world;
  TestPanel panel(world);
  panel.show();
  panel.accept();
  std::optional<bool> complained;
  world.desktop().connection.setOnLost([&](bool hasComplained) { complained = hasComplained; });
  world.compositor().stop();
  ASSERT_TRUE(waitFor([&] { return complained.has_value(); }));
  EXPECT_FALSE(*complained);
  panel.height = 64.0;
  panel.window->setTrackedRectangle(TestPanel::box({200, 64}));
  panel.window->orderOut();
  panel.window->orderFrontRegardless();
  QCoreApplication::processEvents();
}

}  // namespace
}  // namespace valdrix::tests
