#include "tests/tray/TrayHost.h"

#include <QDBusObjectPath>
#include <QDBusPendingCall>
#include <QDBusPendingReply>
#include <QDBusVariant>

#include "tests/support/WaitFor.h"

namespace valdrix::tests {

namespace {

const QString watcherName = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString connectionName = QStringLiteral("tray-host");

}  // namespace

TrayHost::Watcher::Watcher(QStringList& items, bool showsItems)
    : BusObject(QStringLiteral("/StatusNotifierWatcher")) {
  define({.name = watcherName,
          .methods = {{"RegisterStatusNotifierItem",
                       {"s", "",
                        [&items](const QDBusMessage& message) {
                          items.append(message.arguments().at(0).toString());
                          return message.createReply();
                        }}}},
          .properties = {{"IsStatusNotifierHostRegistered", showsItems}},
          .signalsOut = {}});
}

TrayHost::TrayHost(bool showsItems)
    : connection_(QDBusConnection::connectToBus(qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS"),
                                                connectionName)),
      watcher_(items_, showsItems) {
  watcher_.serve(connection_);
  connection_.registerService(watcherName);
}

TrayHost::~TrayHost() { QDBusConnection::disconnectFromBus(connectionName); }

QDBusMessage TrayHost::call(const QString& path, const QString& interface, const QString& method,
                            const QVariantList& arguments) {
  auto message =
      QDBusMessage::createMethodCall(items_.value(items_.size() - 1), path, interface, method);
  message.setArguments(arguments);
  // Not blocking: the item is in this very process.
  QDBusPendingCall answer = connection_.asyncCall(message);
  (void)waitFor([&] { return answer.isFinished(); });
  return answer.reply();
}

QVariant TrayHost::property(const QString& path, const QString& interface, const QString& name) {
  const auto answer = call(path, QStringLiteral("org.freedesktop.DBus.Properties"),
                           QStringLiteral("Get"), {interface, name});
  return answer.arguments().value(0).value<QDBusVariant>().variant();
}

QDBusMessage TrayHost::menu(const QString& method, const QVariantList& arguments) {
  const auto path =
      property(QStringLiteral("/StatusNotifierItem"), itemInterface, QStringLiteral("Menu"));
  return call(path.value<QDBusObjectPath>().path(), menuInterface, method, arguments);
}

}  // namespace valdrix::tests
