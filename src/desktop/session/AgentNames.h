#pragma once

#include <QDBusMessage>
#include <QVariantList>

namespace valdrix::desktop {

/// Where the agent is found on the session bus.
struct AgentNames {
  static constexpr auto service = "org.valdrix.Agent";
  static constexpr auto path = "/org/valdrix/Agent";
  static constexpr auto interface = "org.valdrix.Agent1";
  /// The error of a call that was understood and not carried out; its message says why.
  static constexpr auto refusal = "org.valdrix.Agent1.Refused";

  /// A call of one of the agent's methods that starts nothing when no agent runs.
  [[nodiscard]] static QDBusMessage call(const char* method, const QVariantList& arguments = {}) {
    auto message = QDBusMessage::createMethodCall(service, path, interface, method);
    message.setAutoStartService(false);
    message.setArguments(arguments);
    return message;
  }
};

}  // namespace valdrix::desktop
