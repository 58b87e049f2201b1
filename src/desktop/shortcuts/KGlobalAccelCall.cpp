#include "desktop/shortcuts/KGlobalAccelCall.h"

#include <utility>

#include <QDBusError>
#include <QDBusPendingCallWatcher>

namespace valdrix::desktop {

QDBusMessage KGlobalAccelCall::message() const {
  using namespace kglobalaccel;
  auto message = QDBusMessage::createMethodCall(QLatin1String(service), QLatin1String(path),
                                                QLatin1String(interface), QLatin1String(method));
  message.setArguments(arguments);
  message.setAutoStartService(false);
  return message;
}

void KGlobalAccelCall::send(const SessionBus& bus, QObject& receiver,
                            std::function<void(const QDBusMessage&)> onReply) const {
  const auto& connection = bus.connection();
  const auto failure = QDBusError(QDBusError::Disconnected, QString());
  auto* watcher = new QDBusPendingCallWatcher(
      connection ? connection->asyncCall(message(), timeout) : QDBusPendingCall::fromError(failure),
      &receiver);
  QObject::connect(watcher, &QDBusPendingCallWatcher::finished, &receiver,
                   [onReply = std::move(onReply)](QDBusPendingCallWatcher* finished) {
                     finished->deleteLater();
                     onReply(finished->reply());
                   });
}

void KGlobalAccelCall::send(const SessionBus& bus) const {
  if (const auto& connection = bus.connection()) (void)connection->send(message());
}

}  // namespace valdrix::desktop
