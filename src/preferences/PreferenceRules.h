#pragma once

#include <algorithm>
#include <cstdint>

#include "preferences/PreferenceDefaults.h"

/// What stored values count as that no control would have stored.
namespace valdrix::preferenceRules {

/// Seconds that an indicator stays: the default for what is not above 0 or not a number.
[[nodiscard]] constexpr double hudDuration(double stored) {
  return stored > 0 ? stored : preferenceDefaults::hudDuration;
}

/// How many events are listed, or for how many days: at least 1.
[[nodiscard]] constexpr std::int64_t calendarCount(std::int64_t stored) {
  return std::max<std::int64_t>(1, stored);
}

}  // namespace valdrix::preferenceRules
