#include "desktop/display/BacklightLevel.h"

#include <algorithm>

namespace valdrix::desktop {

std::uint64_t lowestBrightness(const Backlight& backlight) {
  if (backlight.type == Backlight::Type::firmware) return 0;
  return std::max<std::uint64_t>(1, backlight.maxBrightness / 100);
}

std::uint64_t brightnessFromLevel(const Backlight& backlight, float level) {
  const auto max = backlight.maxBrightness;
  if (level >= 1) return max;
  const auto nearest =
      static_cast<long double>(std::max(level, 0.0F)) * static_cast<long double>(max) + 0.5L;
  return std::max(static_cast<std::uint64_t>(nearest), std::min(lowestBrightness(backlight), max));
}

float levelFromBrightness(const Backlight& backlight, std::uint64_t brightness) {
  if (brightness >= backlight.maxBrightness) return 1;
  return static_cast<float>(static_cast<double>(brightness) /
                            static_cast<double>(backlight.maxBrightness));
}

}  // namespace valdrix::desktop
