// The wall clock of the desktop, in zones that do unusual things.

#include <filesystem>
#include <gtest/gtest.h>
#include <limits>
#include <optional>

#include <QDateTime>
#include <QTemporaryDir>
#include <sys/timex.h>

#include "desktop/session/QtUserCalendar.h"
#include "tests/support/WaitFor.h"

namespace valdrix::desktop {
namespace {

namespace fs = std::filesystem;
using platform::Instant;

constexpr auto zoneinfo = "/usr/share/zoneinfo";

Instant at(const char* utc) {
  const auto time = QDateTime::fromString(QString(utc) + 'Z', Qt::ISODate);
  return Instant(std::chrono::milliseconds(time.toMSecsSinceEpoch()));
}

std::string text(std::optional<Instant> instant) {
  if (!instant) return "nothing";
  return QDateTime::fromMSecsSinceEpoch(instant->time_since_epoch().count(), Qt::UTC)
      .toString("yyyy-MM-ddTHH:mm:ss")
      .toStdString();
}

/// A link to a zone's file, as the system has one.
class ZoneLink {
 public:
  explicit ZoneLink(const fs::path& zone) {
    qunsetenv("TZ");
    pointAt(zone);
  }
  /// The way in which the system's own tools change it.
  void pointAt(const fs::path& zone) const {
    const auto next = path().string() + ".new";
    fs::create_symlink(fs::path(zoneinfo) / zone, next);
    fs::rename(next, path());
  }
  [[nodiscard]] fs::path path() const {
    return fs::path(folder_.path().toStdString()) / "localtime";
  }

 private:
  QTemporaryDir folder_;
};

class EnvironmentZone {
 public:
  explicit EnvironmentZone(const QByteArray& value) { qputenv("TZ", value); }
  ~EnvironmentZone() { qunsetenv("TZ"); }
};

TEST(QtUserCalendar, DaysBeginAndFollowEachOtherInEveryZone) {
  const struct {
    const char* zone;
    const char* instant;
    const char* startOfDay;
    int days;
    const char* added;
  } rows[]{
      {"Europe/Paris", "2026-11-18T08:00:00", "2026-11-17T23:00:00", 1, "2026-11-19T08:00:00"},
      // Summer time begins and ends: the same time of day, so other instants.
      {"Europe/Paris", "2026-03-28T11:00:00", "2026-03-27T23:00:00", 1, "2026-03-29T10:00:00"},
      {"Europe/Paris", "2026-03-29T10:00:00", "2026-03-28T23:00:00", -1, "2026-03-28T11:00:00"},
      {"Europe/Paris", "2026-10-25T12:00:00", "2026-10-24T22:00:00", 1, "2026-10-26T12:00:00"},
      // 02:30 is skipped: the first instant after the gap. 02:30 comes twice: the earlier one.
      {"Europe/Paris", "2026-03-28T01:30:00", "2026-03-27T23:00:00", 1, "2026-03-29T01:00:00"},
      {"Europe/Paris", "2026-10-24T00:30:00", "2026-10-23T22:00:00", 1, "2026-10-25T00:30:00"},
      {"Europe/Paris", "2026-10-25T01:30:00", "2026-10-24T22:00:00", 0, "2026-10-25T01:30:00"},
      // Days without a midnight, and with two.
      {"America/Sao_Paulo", "2017-10-15T15:00:00", "2017-10-15T03:00:00", 1, "2017-10-16T15:00:00"},
      {"America/Sao_Paulo", "2017-10-14T03:00:00", "2017-10-14T03:00:00", 1, "2017-10-15T03:00:00"},
      {"Asia/Beirut", "2026-03-29T09:00:00", "2026-03-28T22:00:00", 7, "2026-04-05T09:00:00"},
      {"Asia/Beirut", "2026-10-24T20:30:00", "2026-10-23T21:00:00", 1, "2026-10-25T21:30:00"},
      {"America/Havana", "2026-11-01T12:00:00", "2026-11-01T04:00:00", -1, "2026-10-31T11:00:00"},
      // A day that never was, and offsets at the edges.
      {"Pacific/Apia", "2011-12-29T22:00:00", "2011-12-29T10:00:00", 1, "2011-12-30T10:00:00"},
      {"Pacific/Apia", "2011-12-31T09:00:00", "2011-12-30T10:00:00", -2, "2011-12-30T09:00:00"},
      {"Australia/Lord_Howe", "2026-10-02T15:45:00", "2026-10-02T13:30:00", 1,
       "2026-10-03T15:30:00"},
      {"Asia/Kathmandu", "2026-01-01T18:20:00", "2026-01-01T18:15:00", 365, "2027-01-01T18:20:00"},
      // Years that are far away.
      {"Europe/Paris", "2526-07-01T12:00:00", "2526-06-30T22:00:00", 1, "2526-07-02T12:00:00"},
      {"Europe/Paris", "1826-07-01T12:00:00", "1826-06-30T23:50:39", 1, "1826-07-02T12:00:00"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(std::string(row.zone) + ' ' + row.instant);
    const ZoneLink link(row.zone);
    const QtUserCalendar calendar(link.path());
    EXPECT_EQ(text(calendar.startOfDay(at(row.instant))), row.startOfDay);
    EXPECT_EQ(text(calendar.addDays(at(row.instant), row.days)), row.added);
  }
}

TEST(QtUserCalendar, DatesEndSomewhere) {
  const ZoneLink link("Europe/Paris");
  const QtUserCalendar calendar(link.path());
  const auto now = at("2026-11-18T23:05:00");
  EXPECT_EQ(calendar.fields(now), (platform::DateFields{2026, 11, 19, 3, 0, 5}));
  EXPECT_EQ(calendar.fields(at("1969-12-31T22:59:59")),
            (platform::DateFields{1969, 12, 31, 2, 23, 59}));
  const auto far = calendar.addDays(now, 90'000'000);
  ASSERT_TRUE(far);
  EXPECT_EQ(calendar.fields(*far).hour, 0U);
  EXPECT_GT(calendar.fields(*far).year, 200'000);
  for (const auto days :
       {std::int64_t{100'000'000}, std::int64_t{-100'100'000},
        std::numeric_limits<std::int64_t>::max(), std::numeric_limits<std::int64_t>::min()})
    EXPECT_FALSE(calendar.addDays(now, days)) << days;
}

TEST(QtUserCalendar, FollowsTheSystemsZoneWhileItRuns) {
  const ZoneLink link("Europe/Paris");
  QtUserCalendar calendar(link.path());
  int changes = 0;
  QByteArray seen;
  const Token token = calendar.observeChanges([&] {
    ++changes;
    seen = calendar.zone().id();
  });
  const auto now = at("2026-11-18T08:00:00");
  const struct {
    const char* zone;
    const char* id;
    unsigned hour;
  } rows[]{{"Asia/Tokyo", "Asia/Tokyo", 17},
           {"posix/America/New_York", "America/New_York", 3},
           {"No/Such_Zone", "UTC", 8},
           {"Europe/Paris", "Europe/Paris", 9}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.zone);
    const int before = changes;
    link.pointAt(row.zone);
    ASSERT_TRUE(tests::waitFor([&] { return changes > before; }));
    EXPECT_EQ(seen, row.id) << "as observers see it";
    EXPECT_EQ(calendar.fields(now).hour, row.hour);
  }
  fs::remove(link.path());
  ASSERT_TRUE(tests::waitFor([&] { return calendar.zone() == QTimeZone::utc(); }));
}

TEST(QtUserCalendar, TheEnvironmentsZoneStays) {
  const struct {
    const char* value;
    const char* id;
  } rows[]{{"Asia/Tokyo", "Asia/Tokyo"},
           {":Asia/Tokyo", "Asia/Tokyo"},
           {":/usr/share/zoneinfo/Asia/Tokyo", "Asia/Tokyo"},
           {"UTC-3", "LOC-3"},  // east of Greenwich, unlike in Qt's own names
           {"", "UTC"},
           {"../../etc/passwd", "UTC"},
           {"No/Such_Zone", "UTC"}};
  const ZoneLink link("Europe/Paris");
  for (const auto& row : rows) {
    const EnvironmentZone environment(row.value);
    EXPECT_EQ(QtUserCalendar(link.path()).zone().id(), row.id) << row.value;
  }
}

TEST(QtUserCalendar, TellsOfANewDay) {
  // A zone in which the next day begins within two seconds.
  constexpr qint64 day = 86400;
  const auto untilMidnight = day - (QDateTime::currentSecsSinceEpoch() + 2) % day;
  const auto offset = QTime(0, 0).addSecs(static_cast<int>(untilMidnight));
  const EnvironmentZone environment("XXX-" + offset.toString("HH:mm:ss").toLatin1());
  QtUserCalendar calendar;
  if (calendar.fields(calendar.now()).hour == 0) GTEST_SKIP() << "it has begun already";
  ASSERT_EQ(calendar.fields(calendar.now()).hour, 23U);
  // A clock that somebody sets meanwhile is told of too.
  bool isToldOfNewDay = false;
  const Token token =
      calendar.observeChanges([&] { isToldOfNewDay = calendar.fields(calendar.now()).hour == 0; });
  EXPECT_TRUE(tests::waitFor([&] { return isToldOfNewDay; }));
}

TEST(QtUserCalendar, TellsWhenTheClockWasSet) {
  QtUserCalendar calendar;
  int changes = 0;
  const Token token = calendar.observeChanges([&] { ++changes; });
  // By a nanosecond, which hurts nobody.
  timex step{};
  step.modes = ADJ_SETOFFSET | ADJ_NANO;
  step.time.tv_usec = 1;
  if (::clock_adjtime(CLOCK_REALTIME, &step) < 0) GTEST_SKIP() << "the clock may not be set here";
  EXPECT_TRUE(tests::waitFor([&] { return changes > 0; }));
}

}  // namespace
}  // namespace valdrix::desktop
