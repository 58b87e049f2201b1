#pragma once

#include <functional>
#include <memory>
#include <optional>

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QTimer>

#include "desktop/session/SessionBus.h"

namespace valdrix::desktop {

/// Keeps the item of this process registered with the desktop's org.kde.StatusNotifierWatcher,
/// whenever there is one, and knows whether a bar shows such items.
class StatusNotifierRegistration {
 public:
  enum class State {
    unknown,  ///< there is no bus, or no answer yet
    absent,   ///< no bar
    shown,    ///< a bar shows items, and ours is among them
  };
  struct Handlers {
    /// To be served on this new connection before anybody learns of the item.
    std::function<void(QDBusConnection&)> serve;
    std::function<void()> changed;
  };

  /// `bus` must outlive it.
  StatusNotifierRegistration(SessionBus& bus, Handlers handlers);
  StatusNotifierRegistration(const StatusNotifierRegistration&) = delete;
  StatusNotifierRegistration& operator=(const StatusNotifierRegistration&) = delete;

  [[nodiscard]] State state() const { return state_; }

 private:
  void join(const QDBusConnection& connection);
  void registerItem();
  void askForHosts();
  void setState(State state);

  Handlers handlers_;
  std::optional<QDBusConnection> connection_;
  std::unique_ptr<QDBusServiceWatcher> watcher_;
  State state_ = State::unknown;
  bool isRegistered_ = false;
  /// Fires when bars come or go.
  QTimer hostsChanged_;
  /// Fires when the connection is lost.
  QTimer loss_;
  Token connections_;
};

}  // namespace valdrix::desktop
