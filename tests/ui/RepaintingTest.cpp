// A picture that is kept and painted on where it changes, beside one that is always painted anew.

#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>

#include <QImage>

#include "desktop/ui/PanelPainter.h"
#include "desktop/ui/QtTextMetrics.h"
#include "notch/NotchAnimations.h"
#include "notch/NotchRootView.h"
#include "sim/SimDesktop.h"
#include "view/HostingView.h"
#include "view/Transaction.h"

namespace valdrix::desktop {
namespace {

/// By how much the pixels of two pictures differ at most, of 255.
int farthest(const QImage& a, const QImage& b) {
  int most = 0;
  const auto bytes = static_cast<std::size_t>(a.sizeInBytes());
  for (std::size_t i = 0; i < bytes; ++i)
    most = std::max(most, std::abs(a.constBits()[i] - b.constBits()[i]));
  return most;
}

class Repainting : public testing::TestWithParam<double> {
 protected:
  /// Plays what moves now to its end. Returns a frame in which the pictures differ; 0 for none.
  int framesUntilDifferent() {
    for (int frame = 1; frame < 400; ++frame) {
      now += 1.0 / 60;
      painter.paint(kept, painter.prepareFrame(1.0 / 60));
      const bool isLast = !hosting->needsFrame();
      if (frame % 4 == 0 || isLast) {
        QImage fresh(kept.size(), kept.format());
        fresh.fill(Qt::transparent);
        painter.paint(fresh, fresh.rect());
        // A clip changes how Qt smooths edges, by less than can be seen.
        if (fresh != kept && farthest(fresh, kept) > 2) return frame;
      }
      if (isLast) break;
    }
    return 0;
  }

  NotchViewModel model;
  double now = 0;
  sim::SimDesktop simulated;
  CalendarService calendarService{{.eventStore = simulated.eventStore,
                                   .collator = simulated.collator,
                                   .userCalendar = simulated.userCalendar,
                                   .runLoop = simulated.runLoop,
                                   .userDefaults = simulated.userDefaults,
                                   .workspace = simulated.workspace}};
  QtTextMetrics metrics;
  PanelPainter painter{metrics};
  std::unique_ptr<view::HostingView> hosting;
  QImage kept;
};

TEST_P(Repainting, OfWhatChangedLeavesNoTraces) {
  hosting = std::make_unique<view::HostingView>(
      NotchRootView{.viewModel = &model,
                    .calendar = {.calendarService = &calendarService,
                                 .workspace = &simulated.workspace,
                                 .cursor = &simulated.cursor},
                    .collapsedSize = {200, 32}},
      view::HostingView::Services{
          .textMetrics = metrics,
          .now = [this] { return now; },
          .scheduleRepeatingTimer = [](double, const auto&) { return Token([] {}); }});
  hosting->setFrame({0, 0, 720, 1000});
  kept = QImage((QSizeF(720, 240) * GetParam()).toSize(), QImage::Format_ARGB32_Premultiplied);
  kept.fill(Qt::transparent);
  painter.setPictures(kept.size(), GetParam());
  painter.setContent(hosting.get());
  EXPECT_EQ(framesUntilDifferent(), 0) << "at first";
  ASSERT_EQ(kept.pixelColor(kept.width() / 2, 0), Qt::black) << "nothing was painted";
  const struct {
    const char* what;
    bool isExpanded, isVolume;
    float volume;
  } steps[]{{"expanded", true, false, 0},  {"collapsed", false, false, 0},
            {"volume", false, true, 0.3F}, {"louder", false, true, 0.9F},
            {"expanded", true, true, 1},   {"an indicator again", false, true, 0.5F},
            {"collapsed", false, false, 0}};
  for (const auto& step : steps) {
    view::withAnimation(notchAnimation::show, [&] {
      model.isExpanded = step.isExpanded;
      model.isVolumeHUDVisible = step.isVolume;
      model.volumeLevel = step.volume;
    });
    EXPECT_EQ(framesUntilDifferent(), 0) << step.what;
  }
}

INSTANTIATE_TEST_SUITE_P(At, Repainting, testing::Values(1.5, 2));

}  // namespace
}  // namespace valdrix::desktop
