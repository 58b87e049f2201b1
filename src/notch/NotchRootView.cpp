#include "notch/NotchRootView.h"

#include <algorithm>

#include "calendar/CalendarView.h"
#include "calendar/EventListView.h"
#include "calendar/FrenchLocale.h"
#include "media/BrightnessHUDView.h"
#include "media/VolumeHUDView.h"
#include "notch/NotchAnimations.h"
#include "notch/NotchGeometry.h"
#include "notch/NotchShape.h"
#include "view/Transaction.h"

namespace valdrix {

using view::Alignment;
using view::Color;
using view::Size;
using view::View;

namespace {

constexpr double hudTopGap = 6;
constexpr double heightWithoutAccess = 50;
constexpr double minContentHeight = 72;
constexpr double outlineOpacity = 0.06;
constexpr double outlineWidth = 0.5;

}  // namespace

Size NotchRootView::expandedSize(double contentHeight) const {
  return {expandedWidth, std::max(minExpandedHeight, collapsedSize.height + contentTopExtra +
                                                         contentHeight + contentBottomPadding)};
}

double NotchRootView::cornerRadius(NotchPresentation presentation) const {
  switch (presentation) {
    case NotchPresentation::expanded:
      return expandedCornerRadius;
    case NotchPresentation::volumeHUD:
    case NotchPresentation::brightnessHUD:
      return volumeHUDCornerRadius;
    case NotchPresentation::collapsed:
      break;
  }
  return collapsedCornerRadius;
}

double NotchRootView::targetContentHeight() const {
  const CalendarService& service = *calendar.calendarService;
  const double height =
      service.authStatus() == platform::EventAuthorization::fullAccess
          ? EventListView::estimatedHeight(service.events(), service.userCalendar())
          : heightWithoutAccess;
  return std::max(height, minContentHeight);
}

View NotchRootView::body(State& state) const {
  const auto presentation = viewModel->presentation();
  const Size panelSize = notchGeometry::panelSize(presentation, collapsedSize,
                                                  expandedSize(state.measuredContentHeight));
  const NotchShape shape{cornerRadius(presentation)};
  const bool isExpanded = presentation == NotchPresentation::expanded;
  return panel(presentation)
      .frame({.width = panelSize.width, .height = panelSize.height, .alignment = Alignment::top})
      .clipShape(shape)
      .overlay(view::stroke(shape, Color::white(isExpanded ? outlineOpacity : 0), outlineWidth))
      .frame({.width = windowSize.width, .height = windowSize.height, .alignment = Alignment::top})
      .onChange<double>(targetContentHeight(), true,
                        [self = *this, &state](const double& height) {
                          view::withAnimation(notchAnimation::hide,
                                              [&] { state.measuredContentHeight = height; });
                          self.viewModel->expandedSize = self.expandedSize(height);
                        })
      .locale(std::string(frenchLocale.identifier));
}

View NotchRootView::panel(NotchPresentation presentation) const {
  return view::zStack(
      Alignment::top,
      {
          // An overlay is not laid out before it is seen or prepared: the calendar's fonts are no
          // part of the start.
          view::fill(NotchShape{cornerRadius(presentation)}, Color::black())
              .overlay(calendarLayer(presentation), Alignment::top),
          hudLayer(VolumeHUDView{.level = viewModel->volumeLevel, .isMuted = viewModel->isMuted},
                   presentation == NotchPresentation::volumeHUD),
          hudLayer(BrightnessHUDView{.level = viewModel->brightnessLevel},
                   presentation == NotchPresentation::brightnessHUD),
      });
}

View NotchRootView::calendarLayer(NotchPresentation presentation) const {
  const bool isShown = presentation == NotchPresentation::expanded;
  return View(CalendarView{calendar})
      .frame(view::FrameSize{.width = expandedWidth - 2 * contentHorizontalInset,
                             .alignment = Alignment::topLeading})
      .fixedSize(false, true)
      .padding({.top = collapsedSize.height + contentTopExtra})
      .padding({.leading = contentHorizontalInset, .trailing = contentHorizontalInset})
      .opacity(isShown ? 1 : 0)
      .allowsHitTesting(isShown);
}

View NotchRootView::hudLayer(const View& hud, bool isShown) const {
  return hud.padding({.leading = volumeHUDHorizontalInset, .trailing = volumeHUDHorizontalInset})
      .padding({.top = collapsedSize.height + hudTopGap})
      .frame(view::FrameSize{.width = notchGeometry::hudWidth,
                             .height = collapsedSize.height + notchGeometry::hudExtraHeight,
                             .alignment = Alignment::top})
      .opacity(isShown ? 1 : 0)
      .allowsHitTesting(false);
}

}  // namespace valdrix
