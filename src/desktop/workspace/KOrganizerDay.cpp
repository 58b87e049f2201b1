#include "desktop/workspace/KOrganizerDay.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>

namespace valdrix::desktop {

namespace {

constexpr int attempts = 60;
constexpr int pauseMilliseconds = 500;

QDBusMessage showDateCall(QDate day) {
  auto message = QDBusMessage::createMethodCall("org.kde.korganizer", "/Calendar",
                                                "org.kde.Korganizer.Calendar", "showDate");
  message.setAutoStartService(false);
  QDBusArgument date;
  date.beginStructure();
  date << day.year() << day.month() << day.day();
  date.endStructure();
  message << QVariant::fromValue(date);
  return message;
}

}  // namespace

KOrganizerDay::KOrganizerDay(SessionBus& bus) : bus_(bus) {
  nextAttempt_.setSingleShot(true);
  nextAttempt_.setInterval(pauseMilliseconds);
  QObject::connect(&nextAttempt_, &QTimer::timeout, &nextAttempt_, [this] { tell(); });
}

void KOrganizerDay::show(QDate day) {
  day_ = day;
  attemptsLeft_ = attempts;
  tell();
}

void KOrganizerDay::tell() {
  nextAttempt_.stop();
  if (attemptsLeft_-- <= 0 || !bus_.connection()) return;
  auto* const call =
      new QDBusPendingCallWatcher(bus_.connection()->asyncCall(showDateCall(day_)), &nextAttempt_);
  QObject::connect(call, &QDBusPendingCallWatcher::finished, call, [this, call] {
    if (call->isError()) nextAttempt_.start();
    call->deleteLater();
  });
}

}  // namespace valdrix::desktop
