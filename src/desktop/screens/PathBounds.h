#pragma once

#include <optional>
#include <string_view>

#include "view/Geometry.h"

namespace valdrix::desktop {

/// The smallest rectangle around a path in the notation of SVG's `d` attribute (all commands of SVG
/// 1.1, absolute and relative); curves count with their control points. None when it is malformed
/// or draws nothing.
[[nodiscard]] std::optional<view::Rect> pathBounds(std::string_view path);

}  // namespace valdrix::desktop
