#include <gtest/gtest.h>
#include <xkbcommon/xkbcommon-keysyms.h>

#include <QFile>
#include <QJsonArray>

#include "tests/e2e/AgentDesktop.h"
#include "tests/support/WaitFor.h"

namespace valdrix::tests {

namespace {

/// In the middle of the screen, where the question stands.
constexpr QPoint inQuestion{756, 491};
/// The first event's row in the expanded panel: the bar in its calendar's colour, and its title.
constexpr QPoint onEventBar{658, 93};
constexpr QRect title{780, 84, 100, 18};
/// The first line of what stands in the list's place without access.
constexpr QRect prompt{650, 64, 200, 18};

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
  desktop.home.addCalendar();
  desktop.home.write(UserHome::privacyRecord, "calendars=allowed\n");
  desktop.home.chooseCalendarProgram();
  ASSERT_TRUE(desktop.startAgent());
  desktop.display().movePointer(inNotch);
  EXPECT_TRUE(desktop.awaitPresentation("expanded"));
  EXPECT_TRUE(waitFor([&] { return titles(desktop) == QStringList("Planning"); }));
  EXPECT_TRUE(desktop.awaitPixel(
      onEventBar, [](QRgb color) { return qRed(color) > 240 && qBlue(color) < 20; }));
  EXPECT_TRUE(waitFor([&] { return hasText(desktop, title); }));

  const auto second = QString(UserHome::calendar) + "two.ics";
  desktop.home.writeEvent(second, "uid-2", "Zone");
  EXPECT_TRUE(waitFor([&] { return titles(desktop).contains("Zone"); }));
  EXPECT_TRUE(QFile::remove(desktop.home.file(second)));
  EXPECT_TRUE(waitFor([&] { return titles(desktop) == QStringList("Planning"); }));

  desktop.display().movePointer(title.center());
  desktop.display().click();
  EXPECT_EQ(desktop.home.awaitCalendarProgram(), "--event=-uid %s@1\na b\n");
}

TEST(Calendar, AccessIsAskedForAndRemembered) {
  AgentDesktop desktop;
  desktop.home.addCalendar();
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
  EXPECT_FALSE(QFile::exists(desktop.home.file(UserHome::privacyRecord)));
  ASSERT_TRUE(askForAccess(desktop));
  desktop.display().tapKey(XKB_KEY_Tab);
  desktop.display().tapKey(XKB_KEY_space);
  EXPECT_TRUE(waitFor([&] { return titles(desktop) == QStringList("Planning"); }));
  EXPECT_EQ(authorization(desktop), "fullAccess");
  QFile file(desktop.home.file(UserHome::privacyRecord));
  ASSERT_TRUE(waitFor([&file] { return file.open(QIODevice::ReadOnly); }));
  EXPECT_TRUE(file.readAll().contains("calendars=allowed"));
}

}  // namespace

}  // namespace valdrix::tests
