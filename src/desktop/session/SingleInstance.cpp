#include "desktop/session/SingleInstance.h"

#include <QDBusMessage>

#include "desktop/session/AgentClient.h"
#include "desktop/session/AgentNames.h"

namespace valdrix::desktop {

namespace {

constexpr double connectSeconds = 1;
constexpr int callMilliseconds = 1000;

// Values of org.freedesktop.DBus.RequestName.
constexpr unsigned waitInQueue = 0;
constexpr unsigned doNotQueue = 4;
constexpr unsigned replyExists = 3;

QDBusMessage requestName(unsigned flags) {
  auto message = QDBusMessage::createMethodCall("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                                "org.freedesktop.DBus", "RequestName");
  message << AgentNames::service << flags;
  return message;
}

bool isNameTaken(const QDBusConnection& connection) {
  const auto reply = connection.call(requestName(doNotQueue), QDBus::Block, callMilliseconds);
  return reply.type() == QDBusMessage::ReplyMessage &&
         reply.arguments().value(0).toUInt() == replyExists;
}

}  // namespace

SingleInstance::Claim SingleInstance::claim(const SettingsRequest& settings) {
  if (bus_.waitUntilConnected(connectSeconds)) {
    auto connection = *bus_.connection();
    // Served before the name is taken: who finds the name finds the object.
    object_.serve(connection);
    if (isNameTaken(connection)) {
      if (AgentClient(bus_).openSettings(settings).isDone) return Claim::handedOver;
      // It may just have ended.
      if (isNameTaken(connection)) return Claim::unanswered;
    }
  }
  connections_ = bus_.observeConnections([this](QDBusConnection& connection) {
    object_.serve(connection);
    // Agents that started without a bus meet here; all but one wait in the queue.
    connection.send(requestName(waitInQueue));
  });
  return Claim::only;
}

}  // namespace valdrix::desktop
