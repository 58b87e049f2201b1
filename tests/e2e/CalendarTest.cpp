#include <gtest/gtest.h>
#include <xkbcommon/xkbcommon-keysyms.h>

#include <QDateTime>
#include <QFile>
#include <QJsonArray>

#include "tests/e2e/AgentDesktop.h"
#include "tests/support/WaitFor.h"

namespace valdrix::tests {

namespace {

constexpr QPoint inNotch{756, 16};
constexpr QPoint farAway{200, 700};
/// In the middle of the screen, where the question stands.
constexpr QPoint inQuestion{756, 491};
/// The first event's row in the expanded panel: the bar in its calendar's colour, and its title.
constexpr QPoint onBar{658, 93};
constexpr QRect title{780, 84, 100, 18};
/// The first line of what stands in the list's place without access.
constexpr QRect prompt{650, 64, 200, 18};

const QString calendar = ".local/share/valdrix/calendars/work/";
const QString record = ".local/state/valdrix/privacy.conf";

/// An event that is going on now.
QByteArray event(const QByteArray& uid, const QByteArray& summary) {
  const auto now = QDateTime::currentDateTimeUtc();
  const auto at = [](const QDateTime& time) { return time.toString("yyyyMMddTHHmmssZ").toUtf8(); };
  return "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//valdrix//test//\r\nBEGIN:VEVENT\r\nUID:" +
         uid + "\r\nDTSTAMP:20260101T000000Z\r\nDTSTART:" + at(now.addSecs(-3600)) +
         "\r\nDTEND:" + at(now.addSecs(7200)) + "\r\nSUMMARY:" + summary +
         "\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n";
}

void writeCalendar(const AgentDesktop& desktop) {
  desktop.writeUserFile(calendar + "color", "#FF8000\n");
  desktop.writeUserFile(calendar + "one.ics", event("-uid %s@1", "Planning"));
}

QStringList titles(const AgentDesktop& desktop) {
  QStringList titles;
  for (const auto& each : desktop.status()["calendar"].toObject()["events"].toArray())
    titles.append(each.toObject()["title"].toString());
  return titles;
}

QString authorization(const AgentDesktop& desktop) {
  return desktop.status()["calendar"].toObject()["authStatusName"].toString();
}

bool hasText(AgentDesktop& desktop, const QRect& where) {
  const auto picture = desktop.display().screenshot();
  int bright = 0;
  for (int y = where.top(); y <= where.bottom(); ++y)
    for (int x = where.left(); x <= where.right(); ++x) bright += qGreen(picture.pixel(x, y)) > 150;
  return bright > 40;
}

std::uint32_t focusOf(VirtualDisplay& display) {
  const auto reply = desktop::xcbOwned(xcb_get_input_focus_reply(
      display.connection(), xcb_get_input_focus(display.connection()), nullptr));
  return reply ? reply->focus : 0;
}

/// Has the question come up; whether it does and takes the keys.
bool askForAccess(AgentDesktop& desktop) {
  const auto before = focusOf(desktop.display());
  return desktop.command({"access"}).exitCode == 0 &&
         waitFor([&] { return focusOf(desktop.display()) != before; });
}

TEST(Calendar, EventsAreShownFollowTheirFilesAndOpen) {
  AgentDesktop desktop;
  writeCalendar(desktop);
  desktop.writeUserFile(record, "calendars=allowed\n");
  const auto script = desktop.userFile("calendar-program");
  const auto called = desktop.userFile("called");
  desktop.writeUserFile("calendar-program", "#!/bin/sh\nprintf '%s\\n' \"$@\" >" + called.toUtf8() +
                                                ".new\nmv " + called.toUtf8() + ".new " +
                                                called.toUtf8() + '\n');
  QFile::setPermissions(script, QFile::ReadOwner | QFile::ExeOwner);
  desktop.writeUserFile("config/valdrix/programs.conf",
                        "showEvent=" + script.toUtf8() + " --event={identifier} \"a b\"\n");
  ASSERT_TRUE(desktop.startAgent());
  desktop.display().movePointer(inNotch);
  EXPECT_TRUE(desktop.awaitPresentation("expanded"));
  EXPECT_TRUE(waitFor([&] { return titles(desktop) == QStringList("Planning"); }));
  EXPECT_TRUE(
      desktop.awaitPixel(onBar, [](QRgb color) { return qRed(color) > 240 && qBlue(color) < 20; }));
  EXPECT_TRUE(waitFor([&] { return hasText(desktop, title); }));

  desktop.writeUserFile(calendar + "two.ics", event("uid-2", "Zone"));
  EXPECT_TRUE(waitFor([&] { return titles(desktop).contains("Zone"); }));
  EXPECT_TRUE(QFile::remove(desktop.userFile(calendar + "two.ics")));
  EXPECT_TRUE(waitFor([&] { return titles(desktop) == QStringList("Planning"); }));

  desktop.display().movePointer(title.center());
  desktop.display().click();
  QFile call(called);
  ASSERT_TRUE(waitFor([&] { return call.open(QIODevice::ReadOnly); })) << "nobody was called";
  EXPECT_EQ(call.readAll(), "--event=-uid %s@1\na b\n");
}

TEST(Calendar, AccessIsAskedForAndRemembered) {
  AgentDesktop desktop;
  writeCalendar(desktop);
  ASSERT_TRUE(desktop.startAgent());
  desktop.display().movePointer(inNotch);
  EXPECT_TRUE(desktop.awaitPresentation("expanded"));
  EXPECT_TRUE(waitFor([&] { return hasText(desktop, prompt); }));
  EXPECT_EQ(authorization(desktop), "notDetermined");
  EXPECT_TRUE(titles(desktop).isEmpty());
  desktop.display().movePointer(farAway);

  // What may be struck by accident is no answer.
  for (const auto key : {XKB_KEY_Return, XKB_KEY_Escape}) {
    ASSERT_TRUE(askForAccess(desktop));
    desktop.display().tapKey(XKB_KEY_a);
    desktop.display().tapKey(key);
    EXPECT_TRUE(desktop.awaitPixel(inQuestion, isBackground));
  }
  EXPECT_FALSE(QFile::exists(desktop.userFile(record)));
  ASSERT_TRUE(askForAccess(desktop));
  desktop.display().tapKey(XKB_KEY_Tab);
  desktop.display().tapKey(XKB_KEY_space);
  EXPECT_TRUE(waitFor([&] { return titles(desktop) == QStringList("Planning"); }));
  EXPECT_EQ(authorization(desktop), "fullAccess");
  QFile file(desktop.userFile(record));
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  EXPECT_TRUE(file.readAll().contains("calendars=allowed"));
}

}  // namespace

}  // namespace valdrix::tests
