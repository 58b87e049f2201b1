#pragma once

#include <memory>

#include "platform/Accessibility.h"
#include "platform/EventTaps.h"

namespace valdrix::desktop {

/// Event taps under a compositor, which shows its clients no keys but those of the focused window.
/// A tap can always be installed and never sees an event: the media keys come as commands, which
/// the user binds in the compositor's configuration.
class CommandedEventTaps final : public platform::EventTaps {
 public:
  [[nodiscard]] std::unique_ptr<platform::EventTap> createTap(
      platform::TapLocation location, platform::TapPlacement placement,
      platform::TapOptions options, std::uint32_t mask, platform::TapCallbacks callbacks) override;
};

/// There is nothing to permit, so nothing to ask again and again.
class CommandedAccessibility final : public platform::Accessibility {
 public:
  [[nodiscard]] bool isProcessTrusted() override { return true; }
  bool isProcessTrustedWithOptions(bool) override { return true; }
};

}  // namespace valdrix::desktop
