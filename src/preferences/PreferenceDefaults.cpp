#include "preferences/PreferenceDefaults.h"

#include <string>

#include "preferences/PreferenceKeys.h"

namespace valdrix {

void registerPreferenceDefaults(platform::UserDefaults& userDefaults) {
  using std::string;
  userDefaults.registerDefaults({
      {string(preferenceKeys::volumeHUDEnabled), preferenceDefaults::volumeHUDEnabled},
      {string(preferenceKeys::brightnessHUDEnabled), preferenceDefaults::brightnessHUDEnabled},
      {string(preferenceKeys::calendarMaxEvents), preferenceDefaults::calendarMaxEvents},
      {string(preferenceKeys::calendarWindowDays), preferenceDefaults::calendarWindowDays},
      {string(preferenceKeys::hiddenCalendarIDs), string(preferenceDefaults::hiddenCalendarIDs)},
      {string(preferenceKeys::hudDuration), preferenceDefaults::hudDuration},
  });
}

}  // namespace valdrix
