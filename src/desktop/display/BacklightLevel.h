#pragma once

#include <cstdint>

#include "desktop/display/BacklightTree.h"

namespace valdrix::desktop {

/// The darkest value that is ever written. 0 switches many backlights off, and with them the means
/// to find the key that brings them back; only firmware keeps 0 visible. So it is 0 there, and a
/// hundredth of the range, but at least 1, elsewhere.
[[nodiscard]] std::uint64_t lowestBrightness(const Backlight& backlight);

/// The value nearest to `level` (0 to 1, clamped) on the linear scale from 0 to the maximum, but
/// not below the lowest. Other programs show levels on this scale, so this one does too, also where
/// the driver calls its scale non-linear. Exact up to the full 64 bits.
[[nodiscard]] std::uint64_t brightnessFromLevel(const Backlight& backlight, float level);

/// The level from 0 to 1 of a value, 1 for those beyond the maximum.
[[nodiscard]] float levelFromBrightness(const Backlight& backlight, std::uint64_t brightness);

}  // namespace valdrix::desktop
