#include "desktop/session/QtUserCalendar.h"

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <string>
#include <utility>

#include <QDate>
#include <QDateTime>
#include <sys/timerfd.h>
#include <system_error>

#include "desktop/session/WholeFile.h"

namespace valdrix::desktop {

using platform::Instant;
namespace chrono = std::chrono;

namespace {

/// Days beyond this many from 1970, some 270 000 years, are no dates.
constexpr std::int64_t farthestDay = 100'000'000;
/// More than any zone ever differed from UTC.
constexpr auto largestOffset = chrono::hours(24);

QDateTime utc(Instant instant) {
  return QDateTime::fromMSecsSinceEpoch(instant.time_since_epoch().count(), Qt::UTC);
}

Instant toInstant(const QDateTime& dateTime) {
  return Instant(chrono::milliseconds(dateTime.toMSecsSinceEpoch()));
}

QTimeZone zoneOrUtc(const QByteArray& name) {
  const QTimeZone zone(name);
  return zone.isValid() && !name.isEmpty() ? zone : QTimeZone::utc();
}

/// "Europe/Paris" of "/usr/share/zoneinfo/Europe/Paris"; empty for files elsewhere.
QByteArray zoneNameOf(const std::filesystem::path& file) {
  constexpr std::string_view folder = "/zoneinfo/";
  const std::string path = file.lexically_normal().string();
  const auto found = path.rfind(folder);
  if (found == std::string::npos) return {};
  auto name = QByteArray::fromStdString(path.substr(found + folder.size()));
  for (const char* variant : {"posix/", "right/"})
    if (name.startsWith(variant)) name.remove(0, static_cast<qsizetype>(strlen(variant)));
  return name;
}

QTimeZone zoneNamedByEnvironment(QByteArray value) {
  if (value.startsWith(':')) value.remove(0, 1);
  // Under these names Qt has offsets with the sign that everybody but POSIX gives them, or none.
  const bool isNamedAsQtDoes = value.startsWith("UTC") || value.startsWith("GMT");
  if (isNamedAsQtDoes && value.size() > 3) value.replace(0, 3, "LOC");
  return zoneOrUtc(value.startsWith('/') ? zoneNameOf(value.toStdString()) : value);
}

}  // namespace

QtUserCalendar::QtUserCalendar(std::filesystem::path localtime)
    : localtime_(std::move(localtime)),
      zone_(readZone()),
      timer_(::timerfd_create(CLOCK_REALTIME, TFD_NONBLOCK | TFD_CLOEXEC)),
      zoneWatch_(localtime_, [this] { rereadZone(); }) {
  if (!timer_) return;
  QObject::connect(&timerNotifier_, &QSocketNotifier::activated, &timerNotifier_,
                   [this] { handleTimer(); });
  timerNotifier_.setSocket(timer_.get());
  timerNotifier_.setEnabled(true);
  awaitNextDay();
}

QTimeZone QtUserCalendar::readZone() const {
  if (qEnvironmentVariableIsSet("TZ")) return zoneNamedByEnvironment(qgetenv("TZ"));
  std::error_code error;
  if (std::filesystem::is_symlink(localtime_, error))
    return zoneOrUtc(zoneNameOf(followLinks(localtime_)));
  // A copy of a zone's file does not say its name; Qt knows other places that may.
  if (!std::filesystem::exists(localtime_, error)) return QTimeZone::utc();
  return zoneOrUtc(QTimeZone::systemTimeZoneId());
}

void QtUserCalendar::rereadZone() {
  auto zone = readZone();
  if (zone == zone_) return;
  zone_ = std::move(zone);
  awaitNextDay();
  observers_.notify();
}

Instant QtUserCalendar::startOfNextDay() const {
  const auto today = chrono::floor<chrono::days>(localTime(now()));
  const Instant next = firstInstantAt(today + chrono::days(1));
  // Clocks that were put back over midnight have begun tomorrow once before.
  return next > now() ? next : now() + chrono::hours(1);
}

// Tells nobody; callers do, afterwards.
void QtUserCalendar::awaitNextDay() {
  constexpr int flags = TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET;
  constexpr int mostAttempts = 10;
  for (int attempt = 0; attempt < mostAttempts; ++attempt) {
    // One second too late is in the new day, one too early is not.
    const auto next = chrono::ceil<chrono::seconds>(startOfNextDay());
    itimerspec time{};
    time.it_value.tv_sec = next.time_since_epoch().count();
    const bool isSet = ::timerfd_settime(timer_.get(), flags, &time, nullptr) == 0;
    // The clock may have been set after it was looked at. The kernel says that only here: the timer
    // runs, but by the old clock's next day, and the file descriptor is not readable any more.
    if (isSet || errno != ECANCELED) return;
  }
}

void QtUserCalendar::handleTimer() {
  std::uint64_t expirations = 0;
  const bool hasExpired = ::read(timer_.get(), &expirations, sizeof expirations) > 0;
  // The kernel cancels the timer when the clock was set.
  if (!hasExpired && errno != ECANCELED) return;
  awaitNextDay();
  observers_.notify();
}

Instant QtUserCalendar::now() const {
  return chrono::floor<chrono::milliseconds>(chrono::system_clock::now());
}

QtUserCalendar::LocalTime QtUserCalendar::localTime(Instant instant) const {
  const chrono::seconds offset(zone_.offsetFromUtc(utc(instant)));
  return LocalTime(instant.time_since_epoch() + offset);
}

// QDateTime's own way from local times back fails in different ways at gaps and repetitions, so the
// zone's transitions are walked here.
Instant QtUserCalendar::firstInstantAt(LocalTime time) const {
  const Instant asUtc(time.time_since_epoch());
  Instant from = asUtc - largestOffset;
  chrono::seconds offset(zone_.offsetFromUtc(utc(from)));
  while (true) {
    const Instant candidate = asUtc - offset;
    if (candidate < from) return from;
    const auto transition = zone_.nextTransition(utc(from));
    if (!transition.atUtc.isValid() || toInstant(transition.atUtc) > candidate) return candidate;
    from = toInstant(transition.atUtc);
    offset = chrono::seconds(transition.offsetFromUtc);
  }
}

Instant QtUserCalendar::startOfDay(Instant instant) const {
  return firstInstantAt(chrono::floor<chrono::days>(localTime(instant)));
}

std::optional<Instant> QtUserCalendar::addDays(Instant instant, std::int64_t days) const {
  const auto time = localTime(instant);
  const auto day = chrono::floor<chrono::days>(time).time_since_epoch().count();
  const bool isInRange = days >= -farthestDay - day && days <= farthestDay - day;
  if (!isInRange) return std::nullopt;
  if (days == 0) return instant;
  return firstInstantAt(time + chrono::days(days));
}

platform::DateFields QtUserCalendar::fields(Instant instant) const {
  const auto time = localTime(instant);
  const auto day = chrono::floor<chrono::days>(time);
  const QDate date = QDate(1970, 1, 1).addDays(day.time_since_epoch().count());
  const chrono::hh_mm_ss clock(time - day);
  return {.year = date.year(),
          .month = static_cast<unsigned>(date.month()),
          .day = static_cast<unsigned>(date.day()),
          .weekday = static_cast<unsigned>(date.dayOfWeek() - 1),
          .hour = static_cast<unsigned>(clock.hours().count()),
          .minute = static_cast<unsigned>(clock.minutes().count())};
}

Token QtUserCalendar::observeChanges(std::function<void()> block) {
  return observers_.add(std::move(block));
}

}  // namespace valdrix::desktop
