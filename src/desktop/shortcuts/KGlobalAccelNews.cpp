#include "desktop/shortcuts/KGlobalAccelNews.h"

#include <utility>

#include <QDBusPendingCallWatcher>

#include "desktop/shortcuts/KGlobalAccelAction.h"
#include "desktop/shortcuts/KGlobalAccelCall.h"

namespace valdrix::desktop {

KGlobalAccelNews::KGlobalAccelNews(SessionBus& bus, Handlers handlers)
    : handlers_(std::move(handlers)) {
  connections_ = bus.observeConnections([this](QDBusConnection& connection) { join(connection); });
  if (auto connection = bus.connection()) join(*connection);
}

void KGlobalAccelNews::join(QDBusConnection& connection) {
  using namespace kglobalaccel;
  // With a sender's name the library would wait for the bus to say whose name that is.
  const auto listen = [&](const QString& path, const char* interface, const char* name,
                          const char* slot) {
    connection.connect(QString(), path, QLatin1String(interface), QLatin1String(name), this, slot);
  };
  listen("/org/freedesktop/DBus/Local", "org.freedesktop.DBus.Local", "Disconnected", SLOT(lose()));
  listen(path, interface, "yourShortcutsChanged", SLOT(take(QDBusMessage)));
  const auto ours = QStringLiteral("/component/") + KGlobalAccelAction::component;
  for (const char* name :
       {"globalShortcutPressed", "globalShortcutRepeated", "globalShortcutReleased"})
    listen(ours, componentInterface, name, SLOT(take(QDBusMessage)));
  watcher_ = std::make_unique<QDBusServiceWatcher>(QLatin1String(service), connection,
                                                   QDBusServiceWatcher::WatchForOwnerChange);
  QObject::connect(
      watcher_.get(), &QDBusServiceWatcher::serviceOwnerChanged, this,
      [this](const QString&, const QString&, const QString& owner) { setOwner(owner); });
  askForOwner(connection);
}

void KGlobalAccelNews::askForOwner(const QDBusConnection& connection) {
  const auto bus = QStringLiteral("org.freedesktop.DBus");
  auto call = QDBusMessage::createMethodCall(bus, "/org/freedesktop/DBus", bus, "GetNameOwner");
  call.setArguments({QLatin1String(kglobalaccel::service)});
  auto* answer = new QDBusPendingCallWatcher(connection.asyncCall(call), watcher_.get());
  QObject::connect(answer, &QDBusPendingCallWatcher::finished, this,
                   [this](QDBusPendingCallWatcher* done) {
                     done->deleteLater();
                     if (!done->isError()) setOwner(done->reply().arguments().value(0).toString());
                   });
}

void KGlobalAccelNews::setOwner(const QString& owner) {
  if (std::exchange(owner_, owner) != owner) handlers_.ownerChanged();
}

void KGlobalAccelNews::lose() {
  watcher_.reset();
  setOwner({});
}

void KGlobalAccelNews::take(const QDBusMessage& message) { handlers_.signalled(message); }

}  // namespace valdrix::desktop
