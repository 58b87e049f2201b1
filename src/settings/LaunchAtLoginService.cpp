#include "settings/LaunchAtLoginService.h"

namespace valdrix {

LaunchAtLoginService::LaunchAtLoginService(platform::LoginItem& loginItem) : loginItem_(loginItem) {
  refreshStatus();
}

void LaunchAtLoginService::setEnabled(bool isEnabled) {
  if (isEnabled)
    loginItem_.registerAtLogin();
  else
    loginItem_.unregisterAtLogin();
  refreshStatus();
}

void LaunchAtLoginService::refreshStatus() {
  isEnabled_ = loginItem_.status() == platform::LoginItem::Status::enabled;
}

}  // namespace valdrix
