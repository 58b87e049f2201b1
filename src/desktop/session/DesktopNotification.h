#pragma once

#include <string>

#include "desktop/session/SessionBus.h"

namespace valdrix::desktop {

/// Tells the user something once, as the desktop shows notifications. Never waits; without a bus it
/// waits for one, and without a notification service nothing is shown.
class DesktopNotification {
 public:
  struct Text {
    std::string title;
    std::string body;
  };
  /// Another program has the volume and brightness keys.
  [[nodiscard]] static Text mediaKeysTaken();
  /// The window system gives them to no program.
  [[nodiscard]] static Text mediaKeysWithheld();
  /// What the user changed cannot be written.
  [[nodiscard]] static Text changesNotSaved();

  /// `bus` outlives this.
  explicit DesktopNotification(SessionBus& bus) : bus_(bus) {}

  /// Shows `text`, in place of one that is still waiting for the bus.
  void show(const Text& text);

 private:
  SessionBus& bus_;
  Token whenConnected_;
};

}  // namespace valdrix::desktop
