#include "desktop/calendarserver/CalendarServerCall.h"

#include <utility>

#include <QDBusPendingCallWatcher>

namespace valdrix::desktop {

QDBusMessage CalendarServerCall::message() const {
  auto message = QDBusMessage::createMethodCall(service, path, interface, method);
  message.setArguments(arguments);
  message.setAutoStartService(mayStart);
  return message;
}

void CalendarServerCall::send(const QDBusConnection& connection, QObject& owner,
                              std::function<void(const QDBusMessage&)> onReply) const {
  auto* watcher = new QDBusPendingCallWatcher(connection.asyncCall(message()), &owner);
  QObject::connect(watcher, &QDBusPendingCallWatcher::finished, &owner,
                   [onReply = std::move(onReply)](QDBusPendingCallWatcher* finished) {
                     finished->deleteLater();
                     onReply(finished->reply());
                   });
}

void CalendarServerCall::send(const QDBusConnection& connection) const {
  (void)connection.send(message());
}

}  // namespace valdrix::desktop
