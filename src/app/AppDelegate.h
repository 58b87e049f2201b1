#pragma once

#include <memory>

#include "calendar/CalendarService.h"
#include "media/BrightnessService.h"
#include "media/MediaKeyMonitor.h"
#include "media/VolumeService.h"
#include "notch/NotchViewModel.h"
#include "notch/NotchWindowController.h"
#include "platform/Platform.h"
#include "settings/LaunchAtLoginService.h"
#include "settings/UpdateCheckService.h"

namespace valdrix {

/// The spine of the program: owns the one instance of every service for the whole life of the
/// process, starts them, and passes the media keys on to them. Main thread only.
class AppDelegate final : public MediaKeyMonitorDelegate,
                          public std::enable_shared_from_this<AppDelegate> {
 public:
  /// Registers the preferences' defaults, then makes the services. No window appears yet.
  /// `platform` must outlive the delegate.
  [[nodiscard]] static std::shared_ptr<AppDelegate> make(const platform::Platform& platform);

  /// Launching has finished: puts up the notch, starts to take the media keys and has the published
  /// version looked up.
  void applicationDidFinishLaunching();
  [[nodiscard]] bool applicationSupportsSecureRestorableState() const { return true; }

  [[nodiscard]] bool canHandleBrightnessKeys() const override;
  void mediaKeyVolumeUp(float step) override;
  void mediaKeyVolumeDown(float step) override;
  void mediaKeyMute() override;
  void mediaKeyBrightnessUp(float step) override;
  void mediaKeyBrightnessDown(float step) override;

  [[nodiscard]] const NotchViewModel& viewModel() const { return viewModel_; }
  [[nodiscard]] CalendarService& calendarService() { return calendarService_; }
  [[nodiscard]] const CalendarService& calendarService() const { return calendarService_; }
  [[nodiscard]] const VolumeService& volumeService() const { return volumeService_; }
  [[nodiscard]] const BrightnessService& brightnessService() const { return brightnessService_; }
  [[nodiscard]] MediaKeyMonitor& mediaKeyMonitor() { return mediaKeyMonitor_; }
  [[nodiscard]] const MediaKeyMonitor& mediaKeyMonitor() const { return mediaKeyMonitor_; }
  [[nodiscard]] LaunchAtLoginService& launchAtLoginService() { return launchAtLoginService_; }
  [[nodiscard]] UpdateCheckService& updateCheckService() { return updateCheckService_; }
  /// Whether the notch is on a screen.
  [[nodiscard]] bool hasWindow() const {
    return windowController_ && windowController_->hasWindow();
  }
  /// The same controller every time; made on first use.
  NotchWindowController& windowController();

 private:
  explicit AppDelegate(const platform::Platform& platform);

  /// First member, so that every service that reads a preference while it is made sees the
  /// defaults.
  struct RegisteredDefaults {
    explicit RegisteredDefaults(platform::UserDefaults& userDefaults);
  };

  const platform::Platform& platform_;
  RegisteredDefaults registeredDefaults_;
  NotchViewModel viewModel_;
  CalendarService calendarService_;
  VolumeService volumeService_;
  BrightnessService brightnessService_;
  MediaKeyMonitor mediaKeyMonitor_;
  LaunchAtLoginService launchAtLoginService_;
  UpdateCheckService updateCheckService_;
  std::unique_ptr<NotchWindowController> windowController_;
};

}  // namespace valdrix
