#include "desktop/session/QtUserCalendar.h"

#include <utility>

#include <QDateTime>

namespace valdrix::desktop {

using platform::Instant;

namespace {

QDateTime dateTime(Instant instant, const QTimeZone& zone) {
  return QDateTime::fromMSecsSinceEpoch(instant.time_since_epoch().count(), zone);
}

Instant toInstant(const QDateTime& dateTime) {
  return Instant(std::chrono::milliseconds(dateTime.toMSecsSinceEpoch()));
}

}  // namespace

Instant QtUserCalendar::now() const {
  return std::chrono::floor<std::chrono::milliseconds>(std::chrono::system_clock::now());
}

Instant QtUserCalendar::startOfDay(Instant instant) const {
  return toInstant(dateTime(instant, zone_).date().startOfDay(zone_));
}

std::optional<Instant> QtUserCalendar::addDays(Instant instant, std::int64_t days) const {
  const QDateTime then = dateTime(instant, zone_).addDays(days);
  if (!then.date().isValid()) return std::nullopt;
  return toInstant(then);
}

platform::DateFields QtUserCalendar::fields(Instant instant) const {
  const QDateTime there = dateTime(instant, zone_);
  const QDate date = there.date();
  return {.year = date.year(),
          .month = static_cast<unsigned>(date.month()),
          .day = static_cast<unsigned>(date.day()),
          .weekday = static_cast<unsigned>(date.dayOfWeek() - 1),
          .hour = static_cast<unsigned>(there.time().hour()),
          .minute = static_cast<unsigned>(there.time().minute())};
}

Token QtUserCalendar::observeChanges(std::function<void()> block) {
  return observers_.add(std::move(block));
}

}  // namespace valdrix::desktop
