#pragma once

#include "calendar/CalendarService.h"
#include "platform/Accessibility.h"
#include "platform/Bundle.h"
#include "platform/RunLoop.h"
#include "platform/UserDefaults.h"
#include "platform/Workspace.h"
#include "settings/LaunchAtLoginService.h"

namespace valdrix {

/// What the settings' tabs work with. All of it outlives them.
struct SettingsEnvironment {
  CalendarService& calendarService;
  LaunchAtLoginService& launchAtLoginService;
  platform::UserDefaults& userDefaults;
  platform::Accessibility& accessibility;
  platform::RunLoop& runLoop;
  platform::Workspace& workspace;
  const platform::Bundle& bundle;
};

}  // namespace valdrix
