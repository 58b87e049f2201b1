#pragma once

#include <optional>

#include "platform/Screens.h"
#include "view/Geometry.h"

namespace valdrix {

/// The first screen with a camera housing, in the desktop's order, or nothing.
[[nodiscard]] std::optional<platform::Screen> notchScreen(const platform::Screens& screens);

/// The screen that the panel belongs on: the one with a housing, else the main one, else nothing.
[[nodiscard]] std::optional<platform::Screen> panelScreen(const platform::Screens& screens);

/// The size of a screen's camera housing in whole points, or 200 × 32 when it has none.
[[nodiscard]] view::Size notchSize(const platform::Screen& screen);

}  // namespace valdrix
