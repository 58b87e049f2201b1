#pragma once

#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <string>

#include <QDBusConnection>
#include <QTimer>

#include "desktop/session/BusSocket.h"
#include "desktop/session/FileWatch.h"
#include "observation/Token.h"
#include "platform/RunLoop.h"

namespace valdrix::desktop {

/// The user's message bus, as long and as often as there is one: it may come late, die and come
/// back. Never starts one. Main thread only; needs a QCoreApplication.
class SessionBus {
 public:
  /// Begins to connect without waiting. `runLoop` outlives this.
  explicit SessionBus(platform::RunLoop& runLoop);
  ~SessionBus();
  SessionBus(const SessionBus&) = delete;
  SessionBus& operator=(const SessionBus&) = delete;

  /// Whether anything says where the bus would be; without that there will never be one.
  [[nodiscard]] bool isConfigured() const { return !address_.empty(); }
  /// Whether there is a connection, or the attempt that is under way makes one within `seconds`.
  [[nodiscard]] bool waitUntilConnected(double seconds);
  /// The connection of now; it may break at any time.
  [[nodiscard]] const std::optional<QDBusConnection>& connection() const { return connection_; }

  /// Calls `block` for every new connection from now on, until the token ends.
  [[nodiscard]] Token observeConnections(std::function<void(QDBusConnection&)> block);

 private:
  class Attempt;

  void connect();
  void watchSocket();
  void finishAttempt();
  void tellObservers();
  void handleLoss();
  void retryLater(BusSocket::State state);

  platform::RunLoop& runLoop_;
  std::string address_;
  std::shared_ptr<Attempt> attempt_;
  std::optional<QDBusConnection> connection_;
  std::list<std::shared_ptr<const std::function<void(QDBusConnection&)>>> observers_;
  /// Fires when the connection is lost.
  QTimer loss_;
  std::unique_ptr<FileWatch> socketWatch_;
  int failures_ = 0;
  Token retry_;
};

}  // namespace valdrix::desktop
