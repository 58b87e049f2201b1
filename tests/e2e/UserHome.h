#pragma once

#include <QByteArray>
#include <QProcessEnvironment>
#include <QString>
#include <QTemporaryDir>

namespace valdrix::tests {

/// The home folder of a user who has nothing yet. It ends with this object.
class UserHome {
 public:
  /// Makes it the home of programs with that environment.
  void enter(QProcessEnvironment& environment) const;

  /// A file by its path below the folder.
  [[nodiscard]] QString file(const QString& path) const { return folder_.filePath(path); }
  /// Replaces a file as a whole, folders included.
  void write(const QString& path, const QByteArray& text) const;

  /// The folder of the one calendar.
  static constexpr auto calendar = ".local/share/valdrix/calendars/work/";
  /// Where it is remembered whether calendars may be read.
  static constexpr auto privacyRecord = ".local/state/valdrix/privacy.conf";
  /// Adds the calendar, in orange, with the event "Planning".
  void addCalendar() const;
  /// Writes an event that is going on now.
  void writeEvent(const QString& path, const QByteArray& uid, const QByteArray& summary) const;
  /// Chooses a program for showing events that writes down with which words it is called.
  void chooseCalendarProgram() const;
  /// Those words, a line each, once it has been called with all of them; empty when it is not.
  [[nodiscard]] QByteArray awaitCalendarProgram() const;

 private:
  QTemporaryDir folder_;
};

}  // namespace valdrix::tests
