#pragma once

#include <functional>

#include "desktop/x11/X11EventTaps.h"
#include "platform/Accessibility.h"

namespace valdrix::desktop {

/// Trust on an X server: whether the media keys, or one of them, are to be had. Any client may grab
/// keys there, so what is missing is never a permission but a key that another program took first.
class X11Accessibility final : public platform::Accessibility {
 public:
  /// `taps` outlives this. `onPrompt` tells the user, once, that another program has the keys.
  X11Accessibility(X11EventTaps& taps, std::function<void()> onPrompt);

  [[nodiscard]] bool isProcessTrusted() override;
  bool isProcessTrustedWithOptions(bool prompt) override;

 private:
  X11EventTaps& taps_;
  std::function<void()> onPrompt_;
};

}  // namespace valdrix::desktop
