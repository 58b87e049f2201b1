#pragma once

#include "view/Spring.h"

namespace valdrix::notchAnimation {

/// The panel expands or collapses, or an indicator comes.
inline constexpr view::Spring show{.response = 0.42, .dampingFraction = 0.48};
/// An indicator goes, or the expanded panel takes another height.
inline constexpr view::Spring hide{.response = 0.42, .dampingFraction = 0.52};

}  // namespace valdrix::notchAnimation
