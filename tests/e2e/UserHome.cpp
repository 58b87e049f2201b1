#include "tests/e2e/UserHome.h"

#include <gtest/gtest.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include "tests/support/WaitFor.h"

namespace valdrix::tests {

namespace {

constexpr auto calendarProgram = "calendar-program";
constexpr auto called = "called";

}  // namespace

void UserHome::enter(QProcessEnvironment& environment) const {
  environment.insert("HOME", folder_.path());
  environment.insert("XDG_CONFIG_HOME", file("config"));
  for (const auto* folder : {"XDG_DATA_HOME", "XDG_STATE_HOME", "XDG_CACHE_HOME"})
    environment.remove(folder);
}

void UserHome::write(const QString& path, const QByteArray& text) const {
  QDir().mkpath(QFileInfo(file(path)).path());
  QSaveFile target(file(path));
  if (target.open(QIODevice::WriteOnly)) target.write(text);
  EXPECT_TRUE(target.commit());
}

void UserHome::addCalendar() const {
  write(QString(calendar) + "color", "#FF8000\n");
  writeEvent(QString(calendar) + "one.ics", "-uid %s@1", "Planning");
}

void UserHome::writeEvent(const QString& path, const QByteArray& uid,
                          const QByteArray& summary) const {
  const auto now = QDateTime::currentDateTimeUtc();
  const auto at = [](const QDateTime& time) { return time.toString("yyyyMMddTHHmmssZ").toUtf8(); };
  write(path,
        "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//valdrix//test//\r\nBEGIN:VEVENT\r\nUID:" +
            uid + "\r\nDTSTAMP:20260101T000000Z\r\nDTSTART:" + at(now.addSecs(-3600)) +
            "\r\nDTEND:" + at(now.addSecs(7200)) + "\r\nSUMMARY:" + summary +
            "\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n");
}

void UserHome::chooseCalendarProgram() const {
  const auto target = file(called).toUtf8();
  write(calendarProgram, "#!/bin/sh\nprintf '%s\\n' \"$@\" >" + target + ".new\nmv " + target +
                             ".new " + target + '\n');
  QFile::setPermissions(file(calendarProgram), QFile::ReadOwner | QFile::ExeOwner);
  write("config/valdrix/programs.conf",
        "showEvent=" + file(calendarProgram).toUtf8() + " --event={identifier} \"a b\"\n");
}

QByteArray UserHome::awaitCalendarProgram() const {
  QFile words(file(called));
  EXPECT_TRUE(waitFor([&] { return words.open(QIODevice::ReadOnly); })) << "nobody was called";
  return words.isOpen() ? words.readAll() : QByteArray();
}

}  // namespace valdrix::tests
