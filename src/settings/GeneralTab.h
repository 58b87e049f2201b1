#pragma once

#include "settings/AccessibilityStatusView.h"
#include "settings/CalendarPermissionRow.h"
#include "settings/LaunchAtLoginService.h"
#include "settings/SettingsEnvironment.h"
#include "view/SettingsScene.h"

namespace valdrix {

/// Start at login, and the permissions that the program lives on. The rows of these offer nothing
/// once they are given, so a link leads to where they are taken back.
class GeneralTab final : public view::TabView {
 public:
  /// Reads anew whether the program starts at login.
  explicit GeneralTab(const SettingsEnvironment& environment);

  [[nodiscard]] view::TabContent body() const override;

 private:
  CalendarService& calendarService_;
  LaunchAtLoginService& launchAtLoginService_;
  CalendarPermissionRow calendarPermissionRow_;
  AccessibilityStatusView accessibilityStatusView_;
};

}  // namespace valdrix
