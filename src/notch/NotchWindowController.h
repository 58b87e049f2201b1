#pragma once

#include <memory>
#include <optional>

#include "calendar/CalendarService.h"
#include "media/BrightnessService.h"
#include "media/VolumeService.h"
#include "notch/LevelIndicator.h"
#include "notch/NotchViewModel.h"
#include "notch/NotchWindow.h"
#include "observation/Lifetime.h"
#include "observation/Observer.h"
#include "observation/Token.h"
#include "platform/Platform.h"

namespace valdrix {

/// Keeps the notch window on the right screen and decides what it shows: expands it under the
/// pointer, and shows the level indicators when a level service reports. The only writer of the
/// model's flags and levels. Main thread only.
class NotchWindowController {
 public:
  NotchWindowController(const platform::Platform& platform, NotchViewModel& viewModel,
                        const CalendarService& calendarService, VolumeService& volumeService,
                        BrightnessService& brightnessService);
  ~NotchWindowController();
  NotchWindowController(const NotchWindowController&) = delete;
  NotchWindowController& operator=(const NotchWindowController&) = delete;

  /// Puts up the window and starts to listen. Called once.
  void install();

  /// Whether there is a window; none before `install` and as long as there was no screen.
  [[nodiscard]] bool hasWindow() const { return window_ != nullptr; }

  /// Lays the indicators and the expanded content out before they are seen for the first time,
  /// which loads their fonts. For a moment in which nobody waits.
  void prepareHiddenLayers();

  /// What came of the wish to see a level.
  enum class Showing {
    shown,
    unavailable,  ///< there is nothing whose level could be shown
    switchedOff,  ///< the user has switched the indicator off
    expanded,     ///< the expanded panel has no place for it
  };
  /// Show the indicator of the present level as after a change.
  Showing showVolume();
  Showing showBrightness();

 private:
  void buildWindow();
  void installMouseMonitors();
  void updateHoverState();
  [[nodiscard]] view::Rect hitRectangle(const platform::Screen& screen) const;

  /// Tells the window where the pointer matters, now and after each change of what it shows.
  void updateTracking();
  void scheduleTrackingUpdate();

  void showVolumeHUD(float level, bool isMuted);
  void showBrightnessHUD(float level);
  void scheduleVolumeHUDDismiss();
  void scheduleBrightnessHUDDismiss();
  void hideVolumeHUD();
  void hideBrightnessHUD();
  /// Why an indicator cannot be shown now, if so.
  [[nodiscard]] std::optional<Showing> obstacle(const LevelIndicator& indicator) const;

  const platform::Platform& platform_;
  std::unique_ptr<NotchWindow> window_;
  NotchViewModel& viewModel_;
  const CalendarService& calendarService_;
  VolumeService& volumeService_;
  BrightnessService& brightnessService_;
  Token screenObserver_;
  Token globalMonitor_;
  Token localMonitor_;
  LevelIndicator volumeHUD_;
  LevelIndicator brightnessHUD_;
  view::Size windowSize_{720, 1000};
  Observer trackingObserver_;
  bool isTrackingUpdateScheduled_ = false;
  Lifetime lifetime_;
};

}  // namespace valdrix
