#pragma once

#include <filesystem>
#include <memory>
#include <optional>

#include <QDate>
#include <QString>
#include <QStringList>

namespace valdrix::desktop {

/// An event as calendar programs know it.
struct CalendarEventName {
  QString identifier;
  /// Its calendar on the calendar server and its UID there; empty for events from elsewhere.
  QString serverCalendar;
  QString uid;
};

/// A program that shows calendars, and the argument vectors that make it do so.
class CalendarProgram {
 public:
  virtual ~CalendarProgram() = default;

  /// Shows a day, or just comes up where the program cannot be told which; nothing when it cannot
  /// even do that.
  [[nodiscard]] virtual std::optional<QStringList> showDay(QDate day) const = 0;
  /// Shows an event; nothing when the program cannot. `day` is its day, null when unknown.
  [[nodiscard]] virtual std::optional<QStringList> showEvent(const CalendarEventName& event,
                                                             QDate day) const = 0;
  /// Whether the day must be told over the bus, once the program runs.
  [[nodiscard]] virtual bool takesDayFromBus() const { return false; }
};

/// The commands that the user has written down, in which words are separated by white space or
/// quoted with " or ', and names in braces stand for data: `showDay` with {date}
/// (2026-11-18), {year}, {month} and {day}, `showEvent` with these and {identifier}. A
/// command with one in its first word, the program, is ignored. Nothing when the file has
/// no command.
[[nodiscard]] std::unique_ptr<CalendarProgram> userCalendarProgram(
    const std::filesystem::path& file);

/// The program of the desktop that shows the user's calendars: the one chosen for calendar files,
/// else the first known one that is installed, else any that opens calendar files. Null when there
/// is none.
[[nodiscard]] std::unique_ptr<CalendarProgram> installedCalendarProgram();

}  // namespace valdrix::desktop
