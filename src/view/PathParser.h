#pragma once

#include <optional>
#include <string_view>

#include "view/Path.h"

namespace valdrix::view {

/// Reads path data as in SVG's `d` attribute: the commands M, L, H, V, C, Q, A and Z, absolute in
/// capitals and relative in small letters, repeated ones without their letter. Nothing when `data`
/// is malformed or does not begin with a move.
[[nodiscard]] std::optional<Path> parsePath(std::string_view data);

}  // namespace valdrix::view
