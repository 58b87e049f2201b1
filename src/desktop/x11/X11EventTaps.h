#pragma once

#include <memory>
#include <string>
#include <vector>

#include "desktop/x11/MediaKeyboard.h"
#include "platform/EventTaps.h"
#include "platform/RunLoop.h"

namespace valdrix::desktop {

/// Event taps on an X server: they see the volume, mute and brightness keys, with or without Shift
/// and under any lock, and nothing else that is typed (see `MediaKeyboard`).
///
/// A key is reserved while a tap that is enabled and connected would swallow it. A press that is
/// passed on goes to the focused window, not to the desktop's own shortcut, because the server
/// leaves out the grabs of other clients then; that is why keys that would be passed on are not
/// reserved in the first place.
class X11EventTaps final : public platform::EventTaps {
 public:
  /// Connects when first needed, to `display` or, when that is empty, to what DISPLAY says.
  /// `runLoop` outlives this, and this outlives its taps.
  explicit X11EventTaps(platform::RunLoop& runLoop, std::string display = {});
  ~X11EventTaps() override;

  [[nodiscard]] std::unique_ptr<platform::EventTap> createTap(
      platform::TapLocation location, platform::TapPlacement placement,
      platform::TapOptions options, std::uint32_t mask, platform::TapCallbacks callbacks) override;

  /// Asks the taps again which keys they would swallow, and reserves exactly those. To be called
  /// when the answer may have changed; when it returns, the keys given up are the desktop's.
  void reconsider();
  /// Whether a tap can be installed now: one is, or at least one of the media keys that exist can
  /// be grabbed, or the keyboard has none. Waits for the server.
  [[nodiscard]] bool canInstallTap();
  /// Where the media keys are; empty lists without a server.
  [[nodiscard]] MediaKeyStatus status() const;

 private:
  class Tap;

  [[nodiscard]] bool connect();
  [[nodiscard]] bool decide(const MediaKeyEvent& event);
  [[nodiscard]] bool hasActiveTap() const;

  platform::RunLoop& runLoop_;
  std::string display_;
  std::unique_ptr<MediaKeyboard> keyboard_;
  std::vector<Tap*> taps_;  ///< the newest first
};

}  // namespace valdrix::desktop
