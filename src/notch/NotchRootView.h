#pragma once

#include <memory>

#include "calendar/CalendarEnvironment.h"
#include "notch/NotchViewModel.h"
#include "observation/Observed.h"
#include "view/View.h"

namespace valdrix {

/// The content of the notch window: the black panel at its top centre, with the expanded content
/// and both level indicators, of which at most one is shown. All layers are always there; a
/// presentation only changes opacities, the panel's size and its corners. All lengths in points.
struct NotchRootView {
  NotchViewModel* viewModel = nullptr;
  /// What the expanded content works with.
  CalendarEnvironment calendar{};
  view::Size windowSize{720, 1000};
  view::Size collapsedSize{200, 32};
  double expandedWidth = 580;
  double collapsedCornerRadius = 10;
  double expandedCornerRadius = 22;
  double volumeHUDCornerRadius = 16;
  double volumeHUDHorizontalInset = 18;
  double contentHorizontalInset = 22;
  double contentTopExtra = 32;
  double contentBottomPadding = 32;
  double minExpandedHeight = 200;

  struct State {
    /// The height that the expanded content is given.
    Observed<double> measuredContentHeight{0.0};
  };

  [[nodiscard]] view::View body(State& state) const;

 private:
  [[nodiscard]] view::Size expandedSize(double contentHeight) const;
  [[nodiscard]] double cornerRadius(NotchPresentation presentation) const;
  [[nodiscard]] double targetContentHeight() const;
  [[nodiscard]] view::View panel(NotchPresentation presentation) const;
  [[nodiscard]] view::View calendarLayer(NotchPresentation presentation) const;
  [[nodiscard]] view::View hudLayer(const view::View& hud, bool isShown) const;
};

}  // namespace valdrix
