#include "desktop/session/AgentClient.h"

#include <QDBusError>
#include <QDBusMessage>

#include "desktop/session/AgentNames.h"

namespace valdrix::desktop {

namespace {

constexpr double connectSeconds = 1;
constexpr int callMilliseconds = 1000;

const char* explanation(const QDBusError& error) {
  // What the bus says of a call that must not start its service.
  if (error.name() == "org.freedesktop.DBus.Error.NameHasNoOwner") return "valdrix ne tourne pas.";
  switch (error.type()) {
    case QDBusError::ServiceUnknown:
    case QDBusError::Disconnected:
      return "valdrix ne tourne pas.";
    case QDBusError::NoReply:
    case QDBusError::Timeout:
    case QDBusError::TimedOut:
      return "valdrix ne répond pas.";
    default:
      return "valdrix n'a pas compris la demande : une autre version tourne peut-être.";
  }
}

}  // namespace

AgentClient::Answer AgentClient::status() { return ask("Status"); }

AgentClient::Answer AgentClient::requestCalendarAccess() { return ask("RequestCalendarAccess"); }

AgentClient::Answer AgentClient::quit() { return ask("Quit"); }

AgentClient::Answer AgentClient::ask(const char* method) {
  if (!bus_.waitUntilConnected(connectSeconds))
    return {1, "Impossible de joindre valdrix : pas de bus de session."};
  const auto reply =
      bus_.connection()->call(AgentNames::call(method), QDBus::Block, callMilliseconds);
  if (reply.type() != QDBusMessage::ReplyMessage) return {1, explanation(QDBusError(reply))};
  return {0, reply.arguments().value(0).toString().toStdString()};
}

}  // namespace valdrix::desktop
