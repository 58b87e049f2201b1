// What every store of calendars does: the simulated one, folders on disk and the calendar server.

#include <filesystem>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "desktop/session/QtRunLoop.h"
#include "desktop/vdir/VdirSource.h"
#include "sim/ManualRunLoop.h"
#include "sim/SimEventStore.h"
#include "tests/support/WaitFor.h"
#ifdef VALDRIX_CALENDAR_SERVER
#include "desktop/calendarserver/CalendarServerSource.h"
#include "tests/calendar/CalendarServer.h"
#endif

namespace valdrix {
namespace {

using platform::Event;
using platform::EventCalendar;
using platform::Instant;
using namespace std::chrono_literals;

/// An event as another program writes it; all-day ones by days of the system's time zone.
struct Written {
  std::string uid;
  Instant start;
  std::chrono::minutes length{0};
  bool isAllDay = false;
  int dailyCount = 1;
  std::string title = "Titre";

  /// The lines of its VEVENT.
  [[nodiscard]] QString text() const {
    const auto date = [&](const char* name, Instant instant) {
      const auto milliseconds = instant.time_since_epoch().count();
      return name + (isAllDay ? QDateTime::fromMSecsSinceEpoch(milliseconds)
                                    .toString("';VALUE=DATE:'yyyyMMdd'\r\n'")
                              : QDateTime::fromMSecsSinceEpoch(milliseconds, Qt::UTC)
                                    .toString("':'yyyyMMdd'T'HHmmss'Z\r\n'"));
    };
    const auto rule =
        dailyCount > 1 ? QString("RRULE:FREQ=DAILY;COUNT=%1\r\n").arg(dailyCount) : QString();
    return QString("UID:%1\r\nDTSTAMP:20200101T000000Z\r\nSUMMARY:%2\r\n")
               .arg(uid.c_str(), title.c_str()) +
           date("DTSTART", start) + date("DTEND", start + length) + rule;
  }
};

/// A store with the calendars "work" (titled Travail, #ff8000) and "home", both of one account,
/// and another program that writes to them.
class SimulatedDesk {
 public:
  SimulatedDesk() {
    store_.setAuthorizationStatus(platform::EventAuthorization::fullAccess);
    store_.addCalendar({"work", "Travail", view::Color{1, 128 / 255.0, 0}, "Compte"});
    store_.addCalendar({"home", "Maison", {}, "Compte"});
  }
  platform::EventStore& store() { return store_; }
  bool runUntil(const std::function<bool()>& condition) {
    runLoop_.runPending();
    return condition();
  }
  void write(const std::string& calendar, const Written& event) {
    const auto identifier = calendar + ":" + event.uid;
    store_.removeEvent(identifier);
    for (int i = 0; i < event.dailyCount; ++i) {
      const auto start = event.start + std::chrono::days(i);
      EXPECT_TRUE(store_.addEvent({identifier, event.title, start, start + event.length,
                                   event.isAllDay, event.dailyCount > 1},
                                  calendar));
    }
  }
  void remove(const std::string& calendar, const std::string& uid) {
    EXPECT_TRUE(store_.removeEvent(calendar + ":" + uid));
  }

 private:
  sim::Trace trace_;
  sim::ManualRunLoop runLoop_{trace_};
  sim::SimEventStore store_{trace_, runLoop_};
};

/// What the desks of this computer have in common.
class RealDesk {
 public:
  desktop::CalendarSource& store() { return *source_; }
  bool runUntil(const std::function<bool()>& condition) { return tests::waitFor(condition, 20000); }

 protected:
  void start(std::unique_ptr<desktop::CalendarSource> source) {
    source_ = std::move(source);
    source_->start();
  }

  desktop::QtRunLoop runLoop_;
  desktop::QtUserCalendar userCalendar_;
  std::unique_ptr<desktop::CalendarSource> source_;
};

class FolderDesk final : public RealDesk {
 public:
  FolderDesk() {
    for (const char* name : {"Compte/work", "Compte/home"}) QDir(folder_.path()).mkpath(name);
    put("work/displayname", "Travail");
    put("home/displayname", "Maison");
    put("work/color", "#ff8000");
    desktop::VdirPaths paths;
    paths.places = {folder_.filePath("Compte").toStdString()};
    start(std::make_unique<desktop::VdirSource>(runLoop_, userCalendar_, paths));
  }
  void write(const std::string& calendar, const Written& event) {
    put(calendar + "/" + event.uid + ".ics", "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nBEGIN:VEVENT\r\n" +
                                                 event.text() + "END:VEVENT\r\nEND:VCALENDAR\r\n");
  }
  void remove(const std::string& calendar, const std::string& uid) {
    EXPECT_TRUE(QFile::remove(path(calendar + "/" + uid + ".ics")));
  }

 private:
  QString path(const std::string& name) { return folder_.filePath(("Compte/" + name).c_str()); }
  void put(const std::string& name, const QString& text) {
    QFile file(path(name + ".new"));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(text.toUtf8()) >= 0);
    file.close();
    std::filesystem::rename(path(name + ".new").toStdString(), path(name).toStdString());
  }

  QTemporaryDir folder_;
};

#ifdef VALDRIX_CALENDAR_SERVER
class ServerDesk final : public RealDesk {
 public:
  ServerDesk() {
    EXPECT_TRUE(server_.startBus());
    EXPECT_TRUE(server_.addEntry("account", "[Data Source]\nDisplayName=Compte\n"));
    EXPECT_TRUE(server_.addEntry(
        "work", tests::CalendarServer::calendar("Travail", "Color=#ff8000", "account")));
    EXPECT_TRUE(server_.addEntry("home", tests::CalendarServer::calendar("Maison", "", "account")));
    bus_ = std::make_unique<desktop::SessionBus>(runLoop_);
    start(std::make_unique<desktop::CalendarServerSource>(*bus_, runLoop_, userCalendar_));
  }
  ~ServerDesk() { source_.reset(); }
  void write(const std::string& calendar, const Written& event) {
    const bool isThere = !written_.insert(calendar + event.uid).second;
    EXPECT_TRUE(isThere ? server_.change(calendar.c_str(), event.text())
                        : server_.add(calendar.c_str(), {event.text()}));
  }
  void remove(const std::string& calendar, const std::string& uid) {
    written_.erase(calendar + uid);
    EXPECT_TRUE(server_.remove(calendar.c_str(), uid.c_str()));
  }

 private:
  tests::CalendarServer server_;
  std::set<std::string> written_;
  std::unique_ptr<desktop::SessionBus> bus_;
};
#endif

template <class D>
class EventStoreContract : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(desk.runUntil([this] { return identifier("Travail") && identifier("Maison"); }));
    work = *identifier("Travail");
  }
  std::optional<std::string> identifier(const std::string& title) {
    for (const auto& calendar : desk.store().calendars())
      if (calendar.title == title) return calendar.calendarIdentifier;
    return std::nullopt;
  }
  /// The titles of the day's occurrences in "work", in order, once they are `expected`.
  bool awaitTitles(std::vector<std::string> expected) {
    std::ranges::sort(expected);
    return desk.runUntil([&] {
      std::vector<std::string> titles;
      for (const auto& event : desk.store().events(day, day + 24h, {work}))
        titles.push_back(event.title.value_or("-"));
      std::ranges::sort(titles);
      return titles == expected;
    });
  }

  D desk;
  std::string work;
  const Instant day =
      desktop::QtUserCalendar().startOfDay(std::chrono::sys_days(2026y / 11 / 24) + 12h);
};

#ifdef VALDRIX_CALENDAR_SERVER
using Desks = testing::Types<SimulatedDesk, FolderDesk, ServerDesk>;
#else
using Desks = testing::Types<SimulatedDesk, FolderDesk>;
#endif
TYPED_TEST_SUITE(EventStoreContract, Desks);

TYPED_TEST(EventStoreContract, ListsCalendarsWithColourAndAccount) {
  const auto calendars = this->desk.store().calendars();
  const auto found = std::ranges::find(calendars, this->work, &EventCalendar::calendarIdentifier);
  ASSERT_NE(found, calendars.end());
  EXPECT_EQ(found->color, (view::Color{1, 128 / 255.0, 0}));
  EXPECT_THAT(found->sourceTitle, testing::Optional(testing::EndsWith("Compte")));
}

TYPED_TEST(EventStoreContract, TimeIsHalfOpen) {
  const struct {
    std::chrono::minutes start;
    std::chrono::minutes length;
    bool isFound;
  } cases[] = {
      {-1h, 1h, false},  {-1h, 61min, true}, {24h, 1h, false},   {24h - 1min, 1h, true},
      {-48h, 96h, true}, {0h, 0h, true},     {-1min, 0h, false}, {12h, 0h, true},
      {24h, 0h, false},  {0h, 24h, true},    {-24h, 24h, false}, {24h - 1min, 0h, true},
  };
  std::vector<std::string> expected;
  for (const auto& [start, length, isFound] : cases) {
    const auto name = std::to_string(start.count()) + "+" + std::to_string(length.count());
    this->desk.write("work",
                     {.uid = name, .start = this->day + start, .length = length, .title = name});
    if (isFound) expected.push_back(name);
  }
  EXPECT_TRUE(this->awaitTitles(expected));
}

TYPED_TEST(EventStoreContract, GivesEachOccurrenceOfAnEventItsOwnObject) {
  this->desk.write("work", {.uid = "series",
                            .start = this->day - 2 * 24h + 9h,
                            .length = 30min,
                            .dailyCount = 4,
                            .title = "Série"});
  this->desk.write(
      "work",
      {.uid = "party", .start = this->day, .length = 24h, .isAllDay = true, .title = "Fête"});
  ASSERT_TRUE(this->awaitTitles({"Série", "Fête"}));

  std::vector<Event> events;
  ASSERT_TRUE(this->desk.runUntil([&] {
    events = this->desk.store().events(this->day - 4 * 24h, this->day + 4 * 24h, {this->work});
    return events.size() == 5;
  }));
  std::map<Instant, Event> series;
  for (const auto& event : events) {
    EXPECT_EQ(event.calendar->title, "Travail");
    EXPECT_EQ(event.isAllDay, event.title == "Fête");
    EXPECT_EQ(event.hasRecurrenceRules, event.title == "Série");
    EXPECT_EQ(event.endDate - event.startDate, event.isAllDay ? 24h : 30min);
    if (event.title == "Série") series[event.startDate] = event;
  }
  ASSERT_EQ(series.size(), 4U);
  EXPECT_TRUE(series.begin()->second.eventIdentifier);
  for (const auto& [start, event] : series) {
    EXPECT_EQ((start - this->day - 9h) % 24h, 0min);
    EXPECT_EQ(event.eventIdentifier, series.begin()->second.eventIdentifier);
  }
}

TYPED_TEST(EventStoreContract, AnswersForTheNamedCalendarsOnly) {
  this->desk.write("work", {.uid = "a", .start = this->day + 9h, .title = "Travail a"});
  this->desk.write("home", {.uid = "a", .start = this->day + 9h, .title = "Maison a"});
  ASSERT_TRUE(this->awaitTitles({"Travail a"}));
  std::vector<std::string> all;
  for (const auto& calendar : this->desk.store().calendars())
    all.push_back(calendar.calendarIdentifier);
  const auto count = [&](const std::vector<std::string>& named) {
    return this->desk.store().events(this->day, this->day + 24h, named).size();
  };
  EXPECT_TRUE(this->desk.runUntil([&] { return count(all) == 2; }));
  EXPECT_EQ(count({}), 0U);
  EXPECT_EQ(count({"nobody's", this->work, this->work}), 1U);
}

TYPED_TEST(EventStoreContract, NoticesWhatOthersDo) {
  ASSERT_TRUE(this->awaitTitles({}));
  int notices = 0;
  std::vector<std::string> titles;
  const auto read = [&] {
    titles.clear();
    for (const auto& event : this->desk.store().events(this->day, this->day + 24h, {this->work}))
      titles.push_back(*event.title + "/" + event.eventIdentifier.value_or("-"));
    return titles;
  };
  // Whoever reads only when told must end up with the truth.
  auto token = this->desk.store().observeChanges([&] {
    ++notices;
    read();
  });
  const auto awaitTitle = [&](const std::string& title) {
    return this->desk.runUntil(
        [&] { return titles.size() == 1 && titles[0].starts_with(title + "/"); });
  };
  Written event{.uid = "live", .start = this->day + 9h, .length = 1h, .title = "Avant"};
  this->desk.write("work", event);
  ASSERT_TRUE(awaitTitle("Avant"));
  const auto identifier = titles[0].substr(titles[0].find('/'));
  event.title = "Après";
  this->desk.write("work", event);
  ASSERT_TRUE(awaitTitle("Après"));
  EXPECT_EQ(titles[0], "Après" + identifier);
  event.start += 24h;
  this->desk.write("work", event);
  EXPECT_TRUE(this->desk.runUntil([&] { return titles.empty(); }));
  event.start = this->day;
  this->desk.write("work", event);
  ASSERT_TRUE(awaitTitle("Après"));
  this->desk.remove("work", "live");
  EXPECT_TRUE(this->desk.runUntil([&] { return titles.empty(); }));

  token.reset();
  const int before = notices;
  this->desk.write("work", event);
  EXPECT_TRUE(this->awaitTitles({"Après"}));
  EXPECT_EQ(notices, before);
}

}  // namespace
}  // namespace valdrix
