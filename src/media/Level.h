#pragma once

#include <string>

namespace valdrix {

/// `level` held to 0 to 1. One that is not below 1, not-a-number included, gives 1.
[[nodiscard]] constexpr float clampedLevel(float level) {
  const float held = level < 1.0F ? level : 1.0F;
  return held >= 0.0F ? held : 0.0F;
}

/// The level in whole percent, halves rounded up, with the sign directly behind: "63%". Held to 0
/// to 100; a level that is not a number shows as 100.
[[nodiscard]] std::string percentText(float level);

}  // namespace valdrix
