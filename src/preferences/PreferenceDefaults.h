#pragma once

#include <cstdint>
#include <string_view>

#include "platform/UserDefaults.h"

namespace valdrix {

/// The values that stand in for preferences which the user never set.
namespace preferenceDefaults {
inline constexpr bool volumeHUDEnabled = true;
inline constexpr bool brightnessHUDEnabled = true;
inline constexpr std::int64_t calendarMaxEvents = 4;
inline constexpr std::int64_t calendarWindowDays = 7;
inline constexpr std::string_view hiddenCalendarIDs;
inline constexpr double hudDuration = 0.9;
}  // namespace preferenceDefaults

/// Registers the default of every preference, in one call. To be done before anything reads one.
void registerPreferenceDefaults(platform::UserDefaults& userDefaults);

}  // namespace valdrix
