#include "desktop/session/AgentClient.h"

#include <QDBusError>
#include <QDBusMessage>

#include "desktop/session/AgentNames.h"

namespace valdrix::desktop {

namespace {

// With the start of the program no more than a second.
constexpr double connectSeconds = 0.8;
constexpr int callMilliseconds = 1000;

/// The text for a terminal, which would obey what a title or a file's name holds of controls. They
/// are written as JSON does, so that JSON stays what it is.
std::string printable(const QString& text) {
  QString result;
  for (const QChar c : text) {
    const bool isControl = c.category() == QChar::Other_Control && c != u'\n';
    result +=
        isControl ? QStringLiteral("\\u%1").arg(c.unicode(), 4, 16, QLatin1Char('0')) : QString(c);
  }
  return result.toStdString();
}

std::string explanation(const QDBusError& error) {
  if (error.name() == AgentNames::refusal) return printable(error.message());
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

AgentAnswer AgentClient::status() { return ask("Status"); }

AgentAnswer AgentClient::requestCalendarAccess() { return ask("RequestCalendarAccess"); }

AgentAnswer AgentClient::openSettings(const SettingsRequest& request) {
  const bool isPermissions = request.window == SettingsRequest::Window::permissions;
  return ask(isPermissions ? "OpenPermissions" : "OpenSettings",
             {request.tab ? static_cast<int>(*request.tab) : -1,
              QString::fromStdString(request.activation.text())});
}

AgentAnswer AgentClient::pressKey(const AgentObject::KeyPress& press) {
  return ask("PressKey", {press.code, press.isFine, press.isRepeat, press.isDebounced});
}

AgentAnswer AgentClient::showVolume() { return ask("ShowVolume"); }

AgentAnswer AgentClient::showBrightness() { return ask("ShowBrightness"); }

AgentAnswer AgentClient::describeHousings() { return ask("DescribeHousings"); }

AgentAnswer AgentClient::previewHousing(view::Size size) {
  return ask("PreviewHousing", {size.width, size.height});
}

AgentAnswer AgentClient::entrustKeys() { return ask("EntrustKeys"); }

AgentAnswer AgentClient::restoreKeys() { return ask("RestoreKeys"); }

AgentAnswer AgentClient::describeCustody() { return ask("DescribeCustody"); }

bool AgentClient::isAgentThere() {
  if (!bus_.waitUntilConnected(connectSeconds)) return false;
  auto question = QDBusMessage::createMethodCall("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                                 "org.freedesktop.DBus", "NameHasOwner");
  question << AgentNames::service;
  const auto reply = bus_.connection()->call(question, QDBus::Block, callMilliseconds);
  return reply.arguments().value(0).toBool();
}

AgentAnswer AgentClient::quit() { return ask("Quit"); }

AgentAnswer AgentClient::ask(const char* method, const QVariantList& arguments) {
  if (!bus_.waitUntilConnected(connectSeconds))
    return {false, "Impossible de joindre valdrix : pas de bus de session."};
  const auto reply =
      bus_.connection()->call(AgentNames::call(method, arguments), QDBus::Block, callMilliseconds);
  if (reply.type() != QDBusMessage::ReplyMessage) return {false, explanation(QDBusError(reply))};
  return {true, printable(reply.arguments().value(0).toString())};
}

}  // namespace valdrix::desktop
