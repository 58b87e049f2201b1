#pragma once

namespace valdrix::view {

/// A colour in sRGB, not premultiplied; every component from 0 to 1.
struct Color {
  double red = 0;
  double green = 0;
  double blue = 0;
  double alpha = 1;

  [[nodiscard]] static constexpr Color black(double opacity = 1) { return {0, 0, 0, opacity}; }
  [[nodiscard]] static constexpr Color white(double opacity = 1) { return {1, 1, 1, opacity}; }
  [[nodiscard]] constexpr Color withOpacity(double factor) const {
    return {red, green, blue, alpha * factor};
  }
  bool operator==(const Color&) const = default;
};

}  // namespace valdrix::view
