#pragma once

#include <string_view>

#include <QImage>

namespace valdrix::desktop {

/// A symbol as a square picture of `size` pixels for a bar whose colour nobody tells: light, with a
/// dark rim that shows on light bars only.
[[nodiscard]] QImage trayImage(std::string_view symbol, int size);

}  // namespace valdrix::desktop
