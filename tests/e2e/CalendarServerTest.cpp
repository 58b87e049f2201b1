#include <gtest/gtest.h>

#include <QDateTime>
#include <QJsonArray>

#include "tests/calendar/CalendarServer.h"
#include "tests/e2e/AgentDesktop.h"
#include "tests/support/WaitFor.h"

namespace valdrix::tests {

namespace {

/// The lines of an event that is going on now, and began so many seconds later than others.
QString eventLines(const QString& title, int seconds) {
  static const auto now = QDateTime::currentDateTimeUtc();
  const auto at = [](const QDateTime& time) { return time.toString("yyyyMMddTHHmmssZ"); };
  return "UID:" + title + "\r\nSUMMARY:" + title +
         "\r\nDTSTART:" + at(now.addSecs(seconds - 3600)) + "\r\nDTEND:" + at(now.addSecs(7200));
}

TEST(Calendar, EventsOfTheServerStandAmongThoseOfFolders) {
  CalendarServer server;
  ASSERT_TRUE(server.startBus());
  ASSERT_TRUE(server.addEntry("work", CalendarServer::calendar("Travail", "Color=#0000ff")));
  ASSERT_TRUE(server.add("work", {eventLines("Bureau", 0)}));

  AgentDesktop desktop({.sharesBus = true});
  desktop.home.write(UserHome::privacyRecord, "calendars=allowed\n");
  desktop.home.write(".local/share/valdrix/calendars/home/one.ics",
                     "BEGIN:VEVENT\r\n" + eventLines("Maison", 1).toUtf8() + "\r\nEND:VEVENT\r\n");
  ASSERT_TRUE(desktop.startAgent());
  const auto listed = [&] {
    QStringList events;
    for (const auto& each : desktop.status()["calendar"].toObject()["events"].toArray()) {
      const auto event = each.toObject();
      events.append(event["calendar"].toString() + ' ' + event["title"].toString());
    }
    return events;
  };
  const QStringList both{"Travail Bureau", "home Maison"};
  EXPECT_TRUE(waitFor([&] { return listed() == both; })) << listed().join(", ").toStdString();

  // What the server's death leaves is shown until it is back, with what came meanwhile.
  ASSERT_TRUE(server.kill("Calendar"));
  ASSERT_TRUE(waitFor([&] { return server.add("work", {eventLines("Atelier", 2)}); }))
      << "calls to the dying server fail, but those after them start it";
  EXPECT_TRUE(waitFor([&] { return listed() == both + QStringList("Travail Atelier"); }));
}

}  // namespace

}  // namespace valdrix::tests
