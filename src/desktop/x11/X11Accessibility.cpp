#include "desktop/x11/X11Accessibility.h"

#include <utility>

namespace valdrix::desktop {

X11Accessibility::X11Accessibility(X11EventTaps& taps, std::function<void()> onPrompt)
    : taps_(taps), onPrompt_(std::move(onPrompt)) {}

bool X11Accessibility::isProcessTrusted() { return taps_.canInstallTap(); }

bool X11Accessibility::isProcessTrustedWithOptions(bool prompt) {
  const bool isTrusted = isProcessTrusted();
  if (prompt && !isTrusted) {
    if (const auto tell = std::exchange(onPrompt_, nullptr)) tell();
  }
  return isTrusted;
}

}  // namespace valdrix::desktop
