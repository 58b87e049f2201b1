#pragma once

#include <string_view>

/// The keys of the user's preferences. Readers ask the store each time they need a value, so that a
/// change counts from the next read on.
namespace valdrix::preferenceKeys {

/// Boolean: show the volume indicator and take over the volume keys.
inline constexpr std::string_view volumeHUDEnabled = "volumeHUDEnabled";
/// Boolean: show the brightness indicator and take over the brightness keys.
inline constexpr std::string_view brightnessHUDEnabled = "brightnessHUDEnabled";
/// Integer: how many upcoming events are listed at most; below 1 counts as 1.
inline constexpr std::string_view calendarMaxEvents = "calendarMaxEvents";
/// Integer: how many days ahead events are looked for; below 1 counts as 1.
inline constexpr std::string_view calendarWindowDays = "calendarWindowDays";
/// String: the calendars whose events are not shown, as `HiddenCalendars` writes them.
inline constexpr std::string_view hiddenCalendarIDs = "hiddenCalendarIDs";
/// Double: seconds that an indicator stays after the last change; 0 or less counts as the default.
inline constexpr std::string_view hudDuration = "hudDuration";

}  // namespace valdrix::preferenceKeys
