#include "preferences/PreferenceDefaults.h"

#include <string>

#include "preferences/PreferenceKeys.h"

namespace valdrix {

void registerPreferenceDefaults(platform::UserDefaults& userDefaults) {
  using std::string;
  userDefaults.registerDefaults({
      {string(preferenceKey::volumeHUDEnabled), preferenceDefault::volumeHUDEnabled},
      {string(preferenceKey::brightnessHUDEnabled), preferenceDefault::brightnessHUDEnabled},
      {string(preferenceKey::calendarMaxEvents), preferenceDefault::calendarMaxEvents},
      {string(preferenceKey::calendarWindowDays), preferenceDefault::calendarWindowDays},
      {string(preferenceKey::hiddenCalendarIDs), string(preferenceDefault::hiddenCalendarIDs)},
      {string(preferenceKey::hudDuration), preferenceDefault::hudDuration},
  });
}

}  // namespace valdrix
