#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDeadlineTimer>
#include <QObject>
#include <QString>

namespace valdrix::desktop {

/// The login manager's object for the user's own session, on the system bus.
///
/// The bus may be absent, die and return: a call connects when there is no connection, and once
/// more when the connection turns out dead. A call waits a quarter of a second at most; a manager
/// that lets that pass is left alone for some seconds, so that a held key doesn't add up waits.
/// Only a bus that accepts a connection and then says nothing takes longer to give up.
class Login1Session {
 public:
  Login1Session() = default;
  ~Login1Session();
  Login1Session(const Login1Session&) = delete;
  Login1Session& operator=(const Login1Session&) = delete;

  /// Whether the login manager runs, or the bus can start it.
  [[nodiscard]] bool isReachable();
  /// Writes a device's brightness with the manager's rights; whether it did. It refuses those whose
  /// session is not in the foreground.
  [[nodiscard]] bool setBrightness(const QString& subsystem, const QString& name,
                                   std::uint32_t brightness);
  /// The same without waiting; `done` is called while `context` lives.
  void trySetBrightness(const QString& subsystem, const QString& name, std::uint32_t brightness,
                        QObject& context, std::function<void(bool isSet)> done);

 private:
  /// The answer, or nothing: no bus, an error, too late.
  std::optional<QDBusMessage> call(const QDBusMessage& message);
  [[nodiscard]] bool connect();
  void disconnect();

  std::optional<QDBusConnection> bus_;
  QDeadlineTimer leaveAlone_{0};
};

}  // namespace valdrix::desktop
