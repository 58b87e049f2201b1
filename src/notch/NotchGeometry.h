#pragma once

#include "notch/NotchViewModel.h"
#include "view/Geometry.h"

namespace valdrix {

/// Measures that the panel's picture and its hit test share, in points.
namespace notchGeometry {

inline constexpr double hudWidth = 280;
/// How far an indicator's strip reaches below the notch.
inline constexpr double hudExtraHeight = 36;

/// The size of the panel for a presentation.
[[nodiscard]] constexpr view::Size panelSize(NotchPresentation presentation,
                                             view::Size collapsedSize, view::Size expandedSize) {
  switch (presentation) {
    case NotchPresentation::expanded:
      return expandedSize;
    case NotchPresentation::volumeHUD:
    case NotchPresentation::brightnessHUD:
      return {hudWidth, collapsedSize.height + hudExtraHeight};
    case NotchPresentation::collapsed:
      break;
  }
  return collapsedSize;
}

}  // namespace notchGeometry

}  // namespace valdrix
