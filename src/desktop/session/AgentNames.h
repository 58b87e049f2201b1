#pragma once

#include <QDBusMessage>

namespace valdrix::desktop {

/// Where the agent is found on the session bus.
struct AgentNames {
  static constexpr auto service = "org.valdrix.Agent";
  static constexpr auto path = "/org/valdrix/Agent";
  static constexpr auto interface = "org.valdrix.Agent1";

  /// A call of one of the agent's methods that starts nothing when no agent runs.
  [[nodiscard]] static QDBusMessage call(const char* method) {
    auto message = QDBusMessage::createMethodCall(service, path, interface, method);
    message.setAutoStartService(false);
    return message;
  }
};

}  // namespace valdrix::desktop
