// The calendar server's own ways, on a real one: its series and zones, its entries that change,
// its end and return.

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

#include "desktop/calendarserver/CalendarServerEntry.h"
#include "desktop/calendarserver/CalendarServerSource.h"
#include "desktop/session/QtRunLoop.h"
#include "tests/calendar/CalendarServer.h"
#include "tests/support/WaitFor.h"

namespace valdrix::desktop {
namespace {

using platform::Instant;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using namespace std::chrono_literals;
using Strings = std::vector<std::string>;

const Instant day = std::chrono::sys_days(2026y / 11 / 24);

TEST(CalendarServerEntry, ReadsColoursNamesAndWhatIsHidden) {
  const auto colorOf = [](const QString& text) {
    return CalendarServerEntry::parse("c", "[Calendar]\nColor=" + text, {}).color;
  };
  EXPECT_EQ(colorOf("#ff8000"), (view::Color{1, 128 / 255.0, 0}));
  EXPECT_EQ(colorOf("#ffff80800000"), (view::Color{1, 128 / 255.0, 0}));
  EXPECT_EQ(colorOf("rgb(255, 128,0)"), (view::Color{1, 128 / 255.0, 0}));
  EXPECT_EQ(colorOf("rgba(255,128,0,0.5)"), (view::Color{1, 128 / 255.0, 0, 0.5}));
  for (const char* none : {"", "#", "#12345", "#gggggg", "red;", "rgb(256,0,0)", "rgb(1,2)"})
    EXPECT_EQ(colorOf(none), std::nullopt) << none;

  const QStringList french{"fr_FR", "fr"};
  const auto entry = [&](const char* uid, const QString& text) {
    return CalendarServerEntry::parse(uid, "# a comment\n[Data Source]\n" + text, french);
  };
  const auto calendars = calendarsAmong(
      {entry("z",
             "DisplayName[fr]=Priv\\sé\nDisplayName=Private\nDisplayName[de]=Privat\n"
             "Parent=a\nrubbish\n[Calendar]"),
       entry("y", "Parent=a\nDisplayName=Loin\n[Calendar]\nSelected=false"),
       entry("x", "Parent=off\n[Calendar]"), entry("w", "Enabled=false\n[Calendar]"),
       entry("v", "Parent=a\n[Task List]"), entry("a", "DisplayName=Compte"),
       entry("off", "Enabled=false\n"), entry("u", "Parent=u\nDisplayName=Seul\n[Calendar]")});
  ASSERT_EQ(calendars.size(), 3U);
  EXPECT_EQ(calendars[0].title, "Loin") << "hidden in another program only";
  EXPECT_EQ(calendars[1].title, "Priv é");
  EXPECT_EQ(calendars[1].sourceTitle, "Compte");
  EXPECT_EQ(calendars[2].calendarIdentifier, "u");
}

class CalendarServerTest : public testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(server.startBus()); }

  void start() {
    bus.emplace(runLoop);
    source.emplace(*bus, runLoop, userCalendar);
    token = source->observeChanges([this] { ++notices; });
    source->start();
  }
  Strings titles() {
    Strings titles;
    for (const auto& calendar : source->calendars()) titles.push_back(calendar.title);
    return titles;
  }
  /// The day's occurrences in all calendars, as title and hour.
  Strings events() {
    Strings identifiers;
    for (const auto& calendar : source->calendars())
      identifiers.push_back(calendar.calendarIdentifier);
    Strings events;
    for (const auto& event : source->events(day, day + 24h, identifiers))
      events.push_back(event.title.value_or("-") + " " +
                       std::to_string((event.startDate - day) / 1h));
    std::ranges::sort(events);
    return events;
  }
  bool awaitEvents(const Strings& expected) {
    const bool came = tests::waitFor([&] { return events() == expected; }, 20000);
    if (!came) ADD_FAILURE() << testing::PrintToString(events());
    return came;
  }
  static QString event(const char* uid, const char* start, const char* more = "") {
    return QString("UID:%1\r\nSUMMARY:%1\r\nDTSTART%2\r\nDURATION:PT1H\r\n%3")
        .arg(uid, start, more);
  }

  tests::CalendarServer server;
  QtRunLoop runLoop;
  QtUserCalendar userCalendar;
  std::optional<SessionBus> bus;
  std::optional<CalendarServerSource> source;
  Token token;
  int notices = 0;
};

TEST_F(CalendarServerTest, KnowsAllOfASeriesAndTheZonesOfTheServer) {
  ASSERT_TRUE(server.addEntry("work", tests::CalendarServer::calendar("Travail")));
  ASSERT_TRUE(server.add("work", {event("series", ":20261123T090000Z", "RRULE:FREQ=DAILY;COUNT=9"),
                                  event("moved", ":20261122T080000Z", "RRULE:FREQ=DAILY;COUNT=9"),
                                  event("there", ":20261101T080000Z", "RRULE:FREQ=DAILY;COUNT=3"),
                                  "UID:broken\r\nSUMMARY:broken"}));
  // Out of the day, to another month, and into it.
  ASSERT_TRUE(
      server.change("work", event("moved", ":20270105T080000Z", "RECURRENCE-ID:20261124T080000Z")));
  ASSERT_TRUE(
      server.change("work", event("there", ":20261124T170000Z", "RECURRENCE-ID:20261102T080000Z")));
  ASSERT_TRUE(server.addZone(
      "work",
      "BEGIN:VTIMEZONE\r\nTZID:Nulle part\r\nBEGIN:STANDARD\r\nDTSTART:19700101T000000\r\n"
      "TZOFFSETFROM:-0500\r\nTZOFFSETTO:-0500\r\nEND:STANDARD\r\nEND:VTIMEZONE\r\n"));
  ASSERT_TRUE(server.add("work", {event("zone", ";TZID=Nulle part:20261124T100000")}));
  start();
  ASSERT_TRUE(awaitEvents({"series 9", "there 17", "zone 15"}));
  const auto found = source->events(day + 9h, day + 10h, {"work"});
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].eventIdentifier, "work:series");

  // After this the server's own view no longer knows the series.
  ASSERT_TRUE(server.remove("work", "series", "20261124T090000Z"));
  ASSERT_TRUE(awaitEvents({"there 17", "zone 15"}));
  ASSERT_TRUE(server.change("work", event("series", ":20261124T060000Z")));
  EXPECT_TRUE(awaitEvents({"series 6", "there 17", "zone 15"}));

  source->stop();
  EXPECT_THAT(source->calendars(), IsEmpty());
  ASSERT_TRUE(server.change("work", event("series", ":20261124T070000Z")));
  EXPECT_THAT(events(), IsEmpty());
  source->start();
  EXPECT_TRUE(awaitEvents({"series 7", "there 17", "zone 15"}));
}

TEST_F(CalendarServerTest, FollowsItsEntries) {
  ASSERT_TRUE(server.addEntry("work", tests::CalendarServer::calendar("Travail")));
  ASSERT_TRUE(
      server.addEntry("bad", "[Data Source]\nDisplayName=Cassé\n[Calendar]\nBackendName=nobody\n"));
  ASSERT_TRUE(server.add("work", {event("a", ":20261124T090000Z")}));
  start();
  ASSERT_TRUE(awaitEvents({"a 9"}));
  EXPECT_THAT(titles(), Not(Contains("Cassé")));

  ASSERT_TRUE(
      server.changeEntry("work", tests::CalendarServer::calendar("Bureau", "Color=#0000ff")));
  ASSERT_TRUE(tests::waitFor([&] { return std::ranges::count(titles(), "Bureau") == 1; }));
  EXPECT_EQ(source->events(day, day + 24h, {"work"}).at(0).calendar->color, (view::Color{0, 0, 1}));
  // What could not be opened is tried again once it is described differently.
  ASSERT_TRUE(server.changeEntry("bad", tests::CalendarServer::calendar("Réparé")));
  ASSERT_TRUE(tests::waitFor([&] { return std::ranges::count(titles(), "Réparé") == 1; }));
  const int before = notices;
  ASSERT_TRUE(server.removeEntry("work"));
  EXPECT_TRUE(awaitEvents({}));
  EXPECT_THAT(titles(), Not(Contains("Bureau")));
  EXPECT_GT(notices, before);
}

TEST_F(CalendarServerTest, IsStartedOnlyForWhoUsedItAndSurvivesItsDeaths) {
  start();
  ASSERT_TRUE(bus->waitUntilConnected(10));
  EXPECT_EQ(source->reach(), CalendarSource::Reach::absent);

  // Another program starts it.
  ASSERT_TRUE(server.addEntry("work", tests::CalendarServer::calendar("Travail")));
  ASSERT_TRUE(server.add("work", {event("a", ":20261124T090000Z")}));
  ASSERT_TRUE(awaitEvents({"a 9"}));
  EXPECT_EQ(source->reach(), CalendarSource::Reach::readable);

  for (const char* program : {"Calendar", "Sources"}) {
    SCOPED_TRACE(program);
    ASSERT_TRUE(server.kill(program));
    // Nobody but the source has a reason to start it again.
    ASSERT_TRUE(tests::waitFor([&] { return !server.isRunning(program); }));
    ASSERT_TRUE(tests::waitFor([&] { return server.isRunning(program); }));
    EXPECT_THAT(events(), ElementsAre("a 9"));
    ASSERT_TRUE(server.change("work", event("a", ":20261124T100000Z")));
    ASSERT_TRUE(awaitEvents({"a 10"}));
    ASSERT_TRUE(server.change("work", event("a", ":20261124T090000Z")));
    ASSERT_TRUE(awaitEvents({"a 9"}));
  }

  server.bus().kill();
  ASSERT_TRUE(server.startBus());
  ASSERT_TRUE(server.add("work", {event("b", ":20261124T110000Z")}));
  EXPECT_TRUE(awaitEvents({"a 9", "b 11"}));

  // A user who has used it once.
  source.reset();
  ASSERT_TRUE(server.kill("Calendar") && server.kill("Sources"));
  ASSERT_TRUE(tests::waitFor([&] { return !server.isRunning("Sources"); }));
  start();
  EXPECT_EQ(source->reach(), CalendarSource::Reach::readable);
  EXPECT_TRUE(awaitEvents({"a 9", "b 11"}));
}

}  // namespace
}  // namespace valdrix::desktop
