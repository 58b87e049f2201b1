#include "settings/SettingsView.h"

#include <memory>

#include "settings/AboutTab.h"
#include "settings/ApplicationInfo.h"
#include "settings/CalendarTab.h"
#include "settings/GeneralTab.h"
#include "settings/HUDsTab.h"

namespace valdrix {

view::SettingsScene SettingsView::body() const {
  return {
      .size = {520, 460},
      .tabs = {
          {"Général", "gear", [env = environment] { return std::make_unique<GeneralTab>(env); }},
          {"Calendrier", "calendar",
           [env = environment] { return std::make_unique<CalendarTab>(env); }},
          {"HUDs", "slider.horizontal.below.rectangle",
           [env = environment] { return std::make_unique<HUDsTab>(env); }},
          {"À propos", "info.circle",
           [env = environment] {
             return std::make_unique<AboutTab>(env, std::string(applicationInfo::websiteURL()));
           }},
      }};
}

}  // namespace valdrix
