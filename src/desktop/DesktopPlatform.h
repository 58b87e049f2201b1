#pragma once

#include <functional>
#include <memory>
#include <vector>

#include <QJsonObject>

#include "desktop/WindowSystem.h"
#include "desktop/audio/PulseAudioHardware.h"
#include "desktop/calendar/DesktopEventStore.h"
#include "desktop/display/BacklightDisplayServices.h"
#include "desktop/display/BacklightDisplays.h"
#include "desktop/keys/MediaKeyTaps.h"
#include "desktop/privacy/AccessDialog.h"
#include "desktop/privacy/KeyLossNotice.h"
#include "desktop/privacy/PrivacySettings.h"
#include "desktop/scenes/Appearance.h"
#include "desktop/scenes/QtSceneHost.h"
#include "desktop/screens/CameraHousings.h"
#include "desktop/session/CompiledBundle.h"
#include "desktop/session/DesktopNotification.h"
#include "desktop/session/FeedbackHaptics.h"
#include "desktop/session/FileWatch.h"
#include "desktop/session/IniUserDefaults.h"
#include "desktop/session/PrivacyRecord.h"
#include "desktop/session/QtApplication.h"
#include "desktop/session/QtRunLoop.h"
#include "desktop/session/QtUserCalendar.h"
#include "desktop/session/SessionBus.h"
#include "desktop/session/SettingsRequest.h"
#include "desktop/session/XdgLoginItem.h"
#include "desktop/shortcuts/DesktopKeyCustody.h"
#include "desktop/ui/QtCollator.h"
#include "desktop/ui/QtTextMetrics.h"
#include "desktop/workspace/DesktopWorkspace.h"
#include "platform/Platform.h"

namespace valdrix::desktop {

/// The ports of the desktop that this process runs on, each served by the first backend that
/// applies. Needs a QApplication; main thread only.
class DesktopPlatform {
 public:
  /// The platform of this desktop; null when there is no window system that valdrix can serve.
  /// `runLoop` and `bus` must outlive it.
  [[nodiscard]] static std::unique_ptr<DesktopPlatform> make(QtRunLoop& runLoop, SessionBus& bus);

  DesktopPlatform(const DesktopPlatform&) = delete;
  DesktopPlatform& operator=(const DesktopPlatform&) = delete;

  [[nodiscard]] const platform::Platform& ports() const { return ports_; }
  [[nodiscard]] const WindowSystem& windowSystem() const { return *windowSystem_; }
  /// Who has the volume and brightness keys.
  [[nodiscard]] const MediaKeyTaps& mediaKeys() const { return mediaKeys_; }
  [[nodiscard]] CameraHousings& housings() { return housings_; }
  [[nodiscard]] const CameraHousings& housings() const { return housings_; }
  /// Where the user says what the program may do.
  [[nodiscard]] PrivacySettings& privacySettings() { return privacySettings_; }
  /// Whether the window that is asked for has the tab.
  [[nodiscard]] bool hasTab(const SettingsRequest& request) const;
  /// The desktop's own hold on the media keys.
  [[nodiscard]] DesktopKeyCustody& keyCustody() { return *keyCustody_; }
  [[nodiscard]] const DesktopKeyCustody& keyCustody() const { return *keyCustody_; }
  /// Which backend serves each port, by the port's name.
  [[nodiscard]] QJsonObject backends() const;

 private:
  /// One way to draw windows.
  struct Candidate {
    const char* name;
    /// Why it does not apply here; empty when it does.
    std::string (*refusal)();
    std::unique_ptr<WindowSystem> (*make)(platform::RunLoop&, const QtTextMetrics&,
                                          CameraHousings&);
  };
  /// In the order in which they are tried.
  static const std::vector<Candidate> candidates;

  /// `choice` says which window system it is and why not another.
  DesktopPlatform(QtRunLoop& runLoop, SessionBus& bus, const Candidate& windowSystem,
                  std::string choice);
  /// Leads the window system's own ways to the menu to the menu.
  void connectMenu();
  /// Leaves brightness keys to the desktop for as long as the backlight cannot be written.
  void connectBacklight();
  /// Has the windows follow the window system's theme.
  void connectTheme();
  /// Tells the user of changes that cannot be saved.
  void connectFailures();
  /// Has the desktop leave the keys that are wanted, where the user has said so.
  void connectCustody(platform::RunLoop& runLoop);

  const std::string choice_;

  QtApplication application_;
  IniUserDefaults userDefaults_;
  FeedbackHaptics haptics_;
  DesktopNotification notification_;
  QtTextMetrics textMetrics_;
  PulseAudioHardware audioHardware_;
  BacklightDisplays displays_;
  BacklightDisplayServices displayServices_;
  QtUserCalendar userCalendar_;
  PrivacyRecord privacyRecord_;
  AccessDialog accessDialog_;
  DesktopEventStore eventStore_;
  QtCollator collator_;
  DesktopWorkspace workspace_;
  XdgLoginItem loginItem_;
  std::unique_ptr<platform::UrlSession> urlSession_;
  CompiledBundle bundle_;
  /// While the menu is open on a panel.
  Token panelHold_;
  Appearance appearance_;
  QtSceneHost sceneHost_;
  const std::unique_ptr<DesktopKeyCustody> keyCustody_;
  CameraHousings housings_;
  FileWatch housingsWatch_;
  std::unique_ptr<WindowSystem> windowSystem_;
  MediaKeyTaps mediaKeys_;
  KeyLossNotice keyLossNotice_;
  PrivacySettings privacySettings_;
  Token preferencesObserver_;
  Token backlightObserver_;
  Token trayObserver_;
  Token themeObserver_;
  Token accountObserver_;
  Token custodyObserver_;
  Lifetime lifetime_;
  platform::Platform ports_;
};

}  // namespace valdrix::desktop
