#pragma once

#include <cstdint>
#include <memory>

#include "observation/Lifetime.h"
#include "observation/Token.h"
#include "platform/Accessibility.h"
#include "platform/EventTaps.h"
#include "platform/MediaKey.h"
#include "platform/RunLoop.h"
#include "platform/UserDefaults.h"

namespace valdrix {

/// Acts on intercepted keys. Steps are positive; the operation says the direction. Main thread.
class MediaKeyMonitorDelegate {
 public:
  virtual ~MediaKeyMonitorDelegate() = default;

  [[nodiscard]] virtual bool canHandleBrightnessKeys() const = 0;
  virtual void mediaKeyVolumeUp(float step) = 0;
  virtual void mediaKeyVolumeDown(float step) = 0;
  virtual void mediaKeyMute() = 0;
  virtual void mediaKeyBrightnessUp(float step) = 0;
  virtual void mediaKeyBrightnessDown(float step) = 0;
};

/// Takes the volume, mute and brightness keys before the desktop acts on them and has its delegate
/// act instead. A key is left to the desktop while Control, Option or Command is held, while its
/// indicator is switched off, or when the brightness cannot be controlled. Main thread only.
class MediaKeyMonitor {
 public:
  /// What a press changes a level by; `fineStep` with Shift held.
  static constexpr float step = 0.0625F;
  static constexpr float fineStep = 0.015625F;
  /// Seconds between two tries to install the tap while it cannot be.
  static constexpr double permissionRetryInterval = 3.0;

  /// One accepted press, on its way to the main queue.
  struct KeyAction {
    platform::MediaKey key;
    bool isFine;
    bool isRepeat;
  };

  MediaKeyMonitor(platform::RunLoop& runLoop, platform::Accessibility& accessibility,
                  platform::EventTaps& eventTaps, const platform::UserDefaults& userDefaults);
  ~MediaKeyMonitor();
  MediaKeyMonitor(const MediaKeyMonitor&) = delete;
  MediaKeyMonitor& operator=(const MediaKeyMonitor&) = delete;

  /// Who acts on the keys; held weakly, null for nobody.
  void setDelegate(std::weak_ptr<MediaKeyMonitorDelegate> delegate);

  /// Installs the tap unless it is. Whether it is installed now; false without trust.
  bool start();
  /// Calls `start` every three seconds until it succeeds.
  void startPermissionRetry();
  void stop();

  [[nodiscard]] bool isTapInstalled() const { return tap_ != nullptr; }

  /// Decides one event of the tap, and submits the action of an accepted press to the main queue.
  platform::TapResult handleTapEvent(std::uint32_t type, const platform::InputEvent* event);
  void performKeyAction(const KeyAction& action);

 private:
  [[nodiscard]] bool isIntercepted(std::uint32_t keyCode, std::uint32_t modifierFlags) const;

  platform::RunLoop& runLoop_;
  platform::Accessibility& accessibility_;
  platform::EventTaps& eventTaps_;
  const platform::UserDefaults& userDefaults_;

  std::weak_ptr<MediaKeyMonitorDelegate> delegate_;
  std::unique_ptr<platform::EventTap> tap_;
  Token runLoopSource_;
  Token permissionRetryTimer_;
  Lifetime lifetime_;
};

}  // namespace valdrix
