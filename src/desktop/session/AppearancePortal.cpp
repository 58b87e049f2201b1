#include "desktop/session/AppearancePortal.h"

#include <utility>

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>

namespace valdrix::desktop {

namespace {

const QString portalName = QStringLiteral("org.freedesktop.portal.Desktop");
const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString settings = QStringLiteral("org.freedesktop.portal.Settings");
const QString group = QStringLiteral("org.freedesktop.appearance");
const QString key = QStringLiteral("color-scheme");

/// What the portal's number means; those that are not known yet are no preference.
ColorScheme schemeIn(const QDBusMessage& reply) {
  // `Read` wraps the value twice.
  QVariant value = reply.arguments().value(0);
  while (value.canConvert<QDBusVariant>()) value = value.value<QDBusVariant>().variant();
  switch (value.toUInt()) {
    case 1:
      return ColorScheme::dark;
    case 2:
      return ColorScheme::light;
    default:
      return ColorScheme::noPreference;
  }
}

}  // namespace

AppearancePortal::AppearancePortal(SessionBus& bus, std::function<void()> onChanged)
    : onChanged_(std::move(onChanged)) {
  news_.setSingleShot(true);
  QObject::connect(&news_, &QTimer::timeout, &news_, [this] { ask(false); });
  connections_ = bus.observeConnections([this](QDBusConnection& connection) { join(connection); });
  if (const auto& connection = bus.connection()) join(*connection);
}

void AppearancePortal::join(const QDBusConnection& connection) {
  connection_ = connection;
  isAnswered_ = false;
  // The library's own signals want slots by name: a timer has one. With a sender's name it would
  // wait for the bus to say whose name that is.
  connection_->connect(QString(), portalPath, settings, QStringLiteral("SettingChanged"), {group},
                       QString(), &news_, SLOT(start()));
  portal_ = std::make_unique<QDBusServiceWatcher>(portalName, *connection_,
                                                  QDBusServiceWatcher::WatchForRegistration);
  QObject::connect(portal_.get(), &QDBusServiceWatcher::serviceRegistered, portal_.get(),
                   [this] { ask(false); });
  ask(false);
}

void AppearancePortal::wantAnswer() {
  if (connection_ && !isAnswered_) ask(true);
}

void AppearancePortal::ask(bool mayStart) {
  auto call = QDBusMessage::createMethodCall(portalName, portalPath, settings, "Read");
  call.setAutoStartService(mayStart);
  call << group << key;
  auto* const answer = new QDBusPendingCallWatcher(connection_->asyncCall(call), portal_.get());
  QObject::connect(answer, &QDBusPendingCallWatcher::finished, answer,
                   [this, mayStart](QDBusPendingCallWatcher* done) {
                     done->deleteLater();
                     // Who cannot be started now is not tried with each window.
                     isAnswered_ = isAnswered_ || mayStart || !done->isError();
                     if (!done->isError()) take(schemeIn(done->reply()));
                   });
}

void AppearancePortal::take(ColorScheme scheme) {
  if (std::exchange(scheme_, scheme) != scheme) onChanged_();
}

}  // namespace valdrix::desktop
