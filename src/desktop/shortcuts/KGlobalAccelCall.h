#pragma once

#include <functional>

#include <QDBusMessage>
#include <QObject>
#include <QVariantList>

#include "desktop/session/SessionBus.h"

namespace valdrix::desktop {

/// KDE's service of global shortcuts on the session's bus: the compositor on Wayland, a daemon of
/// its own on X11. Checked with version 5.103; the methods named here are there since 5.90.
namespace kglobalaccel {
inline constexpr auto service = "org.kde.kglobalaccel";
inline constexpr auto path = "/kglobalaccel";
inline constexpr auto interface = "org.kde.KGlobalAccel";
inline constexpr auto componentInterface = "org.kde.kglobalaccel.Component";
}  // namespace kglobalaccel

/// A call to that service, which is never started for it: other desktops may have it installed.
struct KGlobalAccelCall {
  const char* method;
  QVariantList arguments;
  /// After which it has failed, in milliseconds; the largest number is as long as the service
  /// lives.
  int timeout = 5000;

  /// `onReply` gets the answer or the error in a later turn, unless `receiver` is gone by then.
  /// Main thread.
  void send(const SessionBus& bus, QObject& receiver,
            std::function<void(const QDBusMessage&)> onReply) const;
  /// Sends it and does not listen for an answer.
  void send(const SessionBus& bus) const;

 private:
  [[nodiscard]] QDBusMessage message() const;
};

}  // namespace valdrix::desktop
