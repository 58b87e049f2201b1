#pragma once

#include "observation/Observed.h"
#include "view/Geometry.h"

namespace valdrix {

/// What the panel shows. When several things want to be shown, the higher value wins.
enum class NotchPresentation { collapsed = 0, volumeHUD = 1, brightnessHUD = 2, expanded = 3 };

/// The one observable record of what the notch panel shows. The window controller writes the flags
/// and levels, the root view `expandedSize`. Main thread only.
struct NotchViewModel {
  NotchViewModel() = default;
  NotchViewModel(const NotchViewModel&) = delete;
  NotchViewModel& operator=(const NotchViewModel&) = delete;

  /// The pointer is over the panel, which shows its expanded content.
  Observed<bool> isExpanded{false};
  /// Size of the expanded panel, in points.
  Observed<view::Size> expandedSize{view::Size{580, 140}};
  Observed<bool> isVolumeHUDVisible{false};
  /// From 0 to 1.
  Observed<float> volumeLevel{0.0F};
  Observed<bool> isMuted{false};
  Observed<bool> isBrightnessHUDVisible{false};
  /// From 0 to 1.
  Observed<float> brightnessLevel{0.0F};

  /// What is shown now; reading it reads the flags that decide it.
  [[nodiscard]] NotchPresentation presentation() const {
    if (isExpanded) return NotchPresentation::expanded;
    if (isBrightnessHUDVisible) return NotchPresentation::brightnessHUD;
    if (isVolumeHUDVisible) return NotchPresentation::volumeHUD;
    return NotchPresentation::collapsed;
  }
};

}  // namespace valdrix
