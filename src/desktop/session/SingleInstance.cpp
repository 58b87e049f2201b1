#include "desktop/session/SingleInstance.h"

#include <utility>

#include <QDBusMessage>

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

SingleInstance::SingleInstance(SessionBus& bus, Handlers handlers)
    : bus_(bus), handlers_(std::move(handlers)) {}

SingleInstance::Claim SingleInstance::claim() {
  if (bus_.waitUntilConnected(connectSeconds)) {
    auto connection = *bus_.connection();
    // Served before the name is taken: who finds the name finds the object.
    serve(connection);
    if (isNameTaken(connection)) {
      const auto reply =
          connection.call(AgentNames::call("Activate"), QDBus::Block, callMilliseconds);
      if (reply.type() == QDBusMessage::ReplyMessage) return Claim::handedOver;
      // It may just have ended.
      if (isNameTaken(connection)) return Claim::unanswered;
    }
  }
  connections_ = bus_.observeConnections([this](QDBusConnection& connection) {
    serve(connection);
    // Agents that started without a bus meet here; all but one wait in the queue.
    connection.send(requestName(waitInQueue));
  });
  return Claim::only;
}

void SingleInstance::serve(QDBusConnection& connection) {
  connection.registerVirtualObject(AgentNames::path, this);
}

QString SingleInstance::introspect(const QString&) const {
  return QStringLiteral(
             "<interface name=\"%1\">"
             "<method name=\"Status\"><arg name=\"json\" type=\"s\" direction=\"out\"/></method>"
             "<method name=\"RequestCalendarAccess\">"
             "<arg name=\"text\" type=\"s\" direction=\"out\"/></method>"
             "<method name=\"Quit\"/><method name=\"Activate\"/></interface>")
      .arg(AgentNames::interface);
}

bool SingleInstance::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
  const bool isForUs =
      message.interface().isEmpty() || message.interface() == AgentNames::interface;
  if (!isForUs || !message.signature().isEmpty()) return false;
  if (message.member() == "Status") {
    connection.send(message.createReply(QString::fromStdString(handlers_.status())));
  } else if (message.member() == "RequestCalendarAccess") {
    const auto text = handlers_.requestCalendarAccess();
    connection.send(message.createReply(QString::fromStdString(text)));
  } else if (message.member() == "Quit") {
    connection.send(message.createReply());
    handlers_.quit();
  } else if (message.member() == "Activate") {
    connection.send(message.createReply());
    handlers_.activate();
  } else {
    return false;
  }
  return true;
}

}  // namespace valdrix::desktop
