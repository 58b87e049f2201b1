#include "desktop/display/Login1Session.h"

#include <chrono>
#include <utility>

#include <QDBusError>
#include <QDBusPendingCallWatcher>
#include <QStringList>

namespace valdrix::desktop {
namespace {

using namespace std::chrono_literals;
constexpr int callTimeoutMilliseconds = 250;
constexpr auto restAfterTimeout = 5s;

const QString login1 = QStringLiteral("org.freedesktop.login1");

QDBusMessage busCall(const char* method) {
  const auto bus = QStringLiteral("org.freedesktop.DBus");
  return QDBusMessage::createMethodCall(bus, QStringLiteral("/org/freedesktop/DBus"), bus,
                                        QString::fromLatin1(method));
}

QDBusMessage setBrightnessCall(const QString& subsystem, const QString& name,
                               std::uint32_t brightness) {
  auto message = QDBusMessage::createMethodCall(
      login1, QStringLiteral("/org/freedesktop/login1/session/auto"),
      QStringLiteral("org.freedesktop.login1.Session"), QStringLiteral("SetBrightness"));
  message << subsystem << name << brightness;
  return message;
}

}  // namespace

Login1Session::~Login1Session() { disconnect(); }

// Qt's shared connection to the system bus is made once: where it fails it stays failed for ever.
// One under a name of its own can be given up and made anew. It is made by type, not by address,
// because Qt brings the process down when a bus that it was given by address turns the connection
// down.
bool Login1Session::connect() {
  if (bus_ && bus_->isConnected()) return true;
  disconnect();
  static int connectionCount = 0;
  const QDeadlineTimer patience(callTimeoutMilliseconds);
  bus_ = QDBusConnection::connectToBus(QDBusConnection::SystemBus,
                                       QStringLiteral("valdrix-login1-%1").arg(++connectionCount));
  if (bus_->isConnected()) return true;
  if (patience.hasExpired()) leaveAlone_ = QDeadlineTimer(restAfterTimeout);
  return false;
}

void Login1Session::disconnect() {
  if (bus_) QDBusConnection::disconnectFromBus(bus_->name());
  bus_.reset();
}

std::optional<QDBusMessage> Login1Session::call(const QDBusMessage& message) {
  if (!leaveAlone_.hasExpired()) return std::nullopt;
  for (int attempt = 0; attempt < 2; ++attempt) {
    if (!connect()) return std::nullopt;
    const auto reply = bus_->call(message, QDBus::Block, callTimeoutMilliseconds);
    if (reply.type() == QDBusMessage::ReplyMessage) return reply;
    if (!bus_->isConnected()) continue;
    const QDBusError error(reply);
    if (error.type() == QDBusError::NoReply || error.type() == QDBusError::Timeout)
      leaveAlone_ = QDeadlineTimer(restAfterTimeout);
    return std::nullopt;
  }
  return std::nullopt;
}

bool Login1Session::isReachable() {
  auto question = busCall("NameHasOwner");
  question << login1;
  if (const auto answer = call(question); answer && answer->arguments().value(0).toBool())
    return true;
  const auto names = call(busCall("ListActivatableNames"));
  return names && names->arguments().value(0).toStringList().contains(login1);
}

bool Login1Session::setBrightness(const QString& subsystem, const QString& name,
                                  std::uint32_t brightness) {
  return call(setBrightnessCall(subsystem, name, brightness)).has_value();
}

void Login1Session::trySetBrightness(const QString& subsystem, const QString& name,
                                     std::uint32_t brightness, QObject& context,
                                     std::function<void(bool)> done) {
  if (!connect()) return done(false);
  auto* const watcher = new QDBusPendingCallWatcher(
      bus_->asyncCall(setBrightnessCall(subsystem, name, brightness), callTimeoutMilliseconds),
      &context);
  QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher,
                   [watcher, done = std::move(done)] {
                     watcher->deleteLater();
                     done(!watcher->isError());
                   });
}

}  // namespace valdrix::desktop
