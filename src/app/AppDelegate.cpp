#include "app/AppDelegate.h"

#include "preferences/PreferenceDefaults.h"

namespace valdrix {

AppDelegate::RegisteredDefaults::RegisteredDefaults(platform::UserDefaults& userDefaults) {
  registerPreferenceDefaults(userDefaults);
}

std::shared_ptr<AppDelegate> AppDelegate::make(const platform::Platform& platform) {
  return std::shared_ptr<AppDelegate>(new AppDelegate(platform));
}

AppDelegate::AppDelegate(const platform::Platform& platform)
    : platform_(platform),
      registeredDefaults_(platform.userDefaults),
      calendarService_({.eventStore = platform.eventStore,
                        .collator = platform.collator,
                        .userCalendar = platform.userCalendar,
                        .runLoop = platform.runLoop,
                        .userDefaults = platform.userDefaults,
                        .workspace = platform.workspace}),
      volumeService_(platform.audioHardware),
      brightnessService_(platform.displayServices, platform.displays),
      mediaKeyMonitor_(platform.runLoop, platform.accessibility, platform.eventTaps,
                       platform.userDefaults),
      launchAtLoginService_(platform.loginItem),
      updateCheckService_(platform.urlSession, platform.userCalendar, platform.bundle) {}

NotchWindowController& AppDelegate::windowController() {
  if (!windowController_)
    windowController_ = std::make_unique<NotchWindowController>(
        platform_, viewModel_, calendarService_, volumeService_, brightnessService_);
  return *windowController_;
}

void AppDelegate::applicationDidFinishLaunching() {
  platform_.application.setActivationPolicy(platform::ActivationPolicy::accessory);
  windowController().install();
  mediaKeyMonitor_.setDelegate(weak_from_this());
  if (!mediaKeyMonitor_.start()) {
    platform_.accessibility.isProcessTrustedWithOptions(true);
    mediaKeyMonitor_.startPermissionRetry();
  }
  updateCheckService_.checkIfNeeded();
}

bool AppDelegate::canHandleBrightnessKeys() const { return brightnessService_.isAvailable(); }
void AppDelegate::mediaKeyVolumeUp(float step) { volumeService_.adjust(step); }
void AppDelegate::mediaKeyVolumeDown(float step) { volumeService_.adjust(-step); }
void AppDelegate::mediaKeyMute() { volumeService_.toggleMute(); }
void AppDelegate::mediaKeyBrightnessUp(float step) { brightnessService_.adjust(step); }
void AppDelegate::mediaKeyBrightnessDown(float step) { brightnessService_.adjust(-step); }

}  // namespace valdrix
