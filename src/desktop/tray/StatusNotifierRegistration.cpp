#include "desktop/tray/StatusNotifierRegistration.h"

#include <utility>

#include <QDBusError>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>

namespace valdrix::desktop {

namespace {

const QString watcherName = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString watcherPath = QStringLiteral("/StatusNotifierWatcher");
constexpr int longestSilence = 5000;  // milliseconds

QDBusMessage watcherCall(const QString& interface, const char* method,
                         const QVariantList& arguments) {
  auto call =
      QDBusMessage::createMethodCall(watcherName, watcherPath, interface, QLatin1String(method));
  call.setAutoStartService(false);
  call.setArguments(arguments);
  return call;
}

// Who is silent may be starting or stuck, and Qt's own icon would wait for it for half a minute.
StatusNotifierRegistration::State stateAfter(const QDBusError& error) {
  using State = StatusNotifierRegistration::State;
  switch (error.type()) {
    case QDBusError::NoReply:
    case QDBusError::Timeout:
    case QDBusError::TimedOut:
      return State::unknown;
    default:
      return State::absent;
  }
}

}  // namespace

StatusNotifierRegistration::StatusNotifierRegistration(SessionBus& bus, Handlers handlers)
    : handlers_(std::move(handlers)) {
  hostsChanged_.setSingleShot(true);
  QObject::connect(&hostsChanged_, &QTimer::timeout, &hostsChanged_, [this] {
    if (!watcher_) return;
    isRegistered_ ? askForHosts() : registerItem();
  });
  loss_.setSingleShot(true);
  QObject::connect(&loss_, &QTimer::timeout, &loss_, [this] {
    watcher_.reset();
    connection_.reset();
    setState(State::unknown);
  });
  connections_ = bus.observeConnections([this](QDBusConnection& connection) { join(connection); });
  if (const auto& connection = bus.connection()) join(*connection);
}

void StatusNotifierRegistration::join(const QDBusConnection& connection) {
  connection_ = connection;
  loss_.stop();
  isRegistered_ = false;
  handlers_.serve(*connection_);
  // The library's own signals want slots by name: timers have some. With a sender's name it would
  // wait for the bus to say whose name that is.
  connection_->connect(QString(), "/org/freedesktop/DBus/Local", "org.freedesktop.DBus.Local",
                       "Disconnected", &loss_, SLOT(start()));
  for (const char* news : {"StatusNotifierHostRegistered", "StatusNotifierHostUnregistered"})
    connection_->connect(QString(), watcherPath, watcherName, QLatin1String(news), &hostsChanged_,
                         SLOT(start()));
  watcher_ = std::make_unique<QDBusServiceWatcher>(watcherName, *connection_,
                                                   QDBusServiceWatcher::WatchForOwnerChange);
  QObject::connect(watcher_.get(), &QDBusServiceWatcher::serviceOwnerChanged, watcher_.get(),
                   [this](const QString&, const QString&, const QString& owner) {
                     isRegistered_ = false;
                     if (owner.isEmpty())
                       setState(State::absent);
                     else
                       registerItem();
                   });
  registerItem();
}

void StatusNotifierRegistration::registerItem() {
  const auto call =
      watcherCall(watcherName, "RegisterStatusNotifierItem", {connection_->baseService()});
  auto* answer =
      new QDBusPendingCallWatcher(connection_->asyncCall(call, longestSilence), watcher_.get());
  QObject::connect(answer, &QDBusPendingCallWatcher::finished, answer,
                   [this](QDBusPendingCallWatcher* done) {
                     done->deleteLater();
                     isRegistered_ = !done->isError();
                     if (isRegistered_)
                       askForHosts();
                     else
                       setState(stateAfter(done->error()));
                   });
}

void StatusNotifierRegistration::askForHosts() {
  const auto call = watcherCall("org.freedesktop.DBus.Properties", "Get",
                                {watcherName, "IsStatusNotifierHostRegistered"});
  auto* answer =
      new QDBusPendingCallWatcher(connection_->asyncCall(call, longestSilence), watcher_.get());
  QObject::connect(answer, &QDBusPendingCallWatcher::finished, answer,
                   [this](QDBusPendingCallWatcher* done) {
                     done->deleteLater();
                     if (done->isError()) return setState(stateAfter(done->error()));
                     const auto value = done->reply().arguments().value(0).value<QDBusVariant>();
                     setState(value.variant().toBool() ? State::shown : State::absent);
                   });
}

void StatusNotifierRegistration::setState(State state) {
  if (std::exchange(state_, state) != state) handlers_.changed();
}

}  // namespace valdrix::desktop
