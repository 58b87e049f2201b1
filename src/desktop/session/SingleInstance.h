#pragma once

#include <functional>
#include <string>

#include <QDBusVirtualObject>

#include "desktop/session/SessionBus.h"

namespace valdrix::desktop {

/// The running agent's name and voice on the session bus: object /org/valdrix/Agent of the service
/// org.valdrix.Agent answers Status, RequestCalendarAccess, Quit
/// and Activate of the interface org.valdrix.Agent1. A
/// second start finds the name taken and hands over to the first. Without a bus the agent is alone
/// and mute until there is one.
class SingleInstance final : private QDBusVirtualObject {
 public:
  struct Handlers {
    /// The agent's state, as it is to be printed.
    std::function<std::string()> status;
    /// Asks the user for access to the calendars and says at once, for the user, whether it does.
    std::function<std::string()> requestCalendarAccess;
    std::function<void()> quit;
    /// A second start asked this one to show that it runs.
    std::function<void()> activate;
  };
  enum class Claim {
    only,        ///< this is the agent, or nobody can tell
    handedOver,  ///< another one runs and has been told; this start should end
    unanswered,  ///< another one runs but does not react
  };

  /// `bus` outlives this.
  SingleInstance(SessionBus& bus, Handlers handlers);

  /// Takes the name or hands over to its owner, within two seconds or so.
  [[nodiscard]] Claim claim();

 private:
  void serve(QDBusConnection& connection);
  [[nodiscard]] QString introspect(const QString& path) const override;
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

  SessionBus& bus_;
  Handlers handlers_;
  Token connections_;
};

}  // namespace valdrix::desktop
