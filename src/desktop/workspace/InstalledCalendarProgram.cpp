#include <algorithm>
#include <array>
#include <clocale>
#include <ctime>
#include <utility>

#include <QByteArray>
#include <QFileInfo>
#include <QUrl>

#include "desktop/workspace/CalendarPrograms.h"
#include "desktop/workspace/DesktopApplications.h"

namespace valdrix::desktop {

namespace {

const QString calendarFiles = QStringLiteral("text/calendar");

// GNOME Calendar reads a date as the locale writes it, and no other way.
QString localeDate(QDate day) {
  std::tm time{};
  time.tm_year = day.year() - 1900;
  time.tm_mon = day.month() - 1;
  time.tm_mday = day.day();
  std::array<char, 64> text{};
  return QString::fromUtf8(
      text.data(), static_cast<qsizetype>(std::strftime(text.data(), text.size(), "%x", &time)));
}

QString percentEncoded(const QString& text) {
  return QString::fromLatin1(QUrl::toPercentEncoding(text));
}

/// A calendar program whose ways are known.
struct KnownProgram {
  const char* executable;
  /// Names of its desktop entries, its own executable apart.
  std::array<const char*, 2> names;
  QStringList (*dayArguments)(QDate day);
  /// Null where events cannot be asked for.
  QStringList (*eventArguments)(const CalendarEventName& event);
  bool takesDayFromBus = false;
};

const std::array<KnownProgram, 4>& knownPrograms() {
  static const std::array<KnownProgram, 4> programs{{
      {.executable = "gnome-calendar",
       .names = {"org.gnome.Calendar", ""},
       .dayArguments = [](QDate day) { return QStringList("--date=" + localeDate(day)); },
       .eventArguments =
           [](const CalendarEventName& event) {
             return QStringList("--uuid=" + event.identifier);
           }},
      {.executable = "evolution",
       .names = {"org.gnome.Evolution", ""},
       .dayArguments =
           [](QDate day) {
             return QStringList("calendar:///?startdate=" + day.toString("yyyyMMdd"));
           },
       .eventArguments =
           [](const CalendarEventName& event) {
             return QStringList("calendar:///?source-uid=" + percentEncoded(event.serverCalendar) +
                                "&comp-uid=" + percentEncoded(event.uid));
           }},
      {.executable = "korganizer",
       .names = {"org.kde.korganizer", ""},
       .dayArguments = [](QDate) { return QStringList(); },
       .eventArguments = nullptr,
       .takesDayFromBus = true},
      {.executable = "thunderbird",
       .names = {"net.thunderbird.Thunderbird", "org.mozilla.Thunderbird"},
       .dayArguments = [](QDate) { return QStringList("-calendar"); },
       .eventArguments = nullptr},
  }};
  return programs;
}

class InstalledCalendarProgram final : public CalendarProgram {
 public:
  /// `ways` is null for a program of which nothing is known.
  InstalledCalendarProgram(const DesktopApplication& application, const KnownProgram* ways)
      : command_(application.entry.command()), ways_(ways) {}

  [[nodiscard]] std::optional<QStringList> showDay(QDate day) const override {
    return ways_ && day.isValid() ? command_ + ways_->dayArguments(day) : command_;
  }
  [[nodiscard]] std::optional<QStringList> showEvent(const CalendarEventName& event,
                                                     QDate) const override {
    if (!ways_ || !ways_->eventArguments || event.serverCalendar.isEmpty()) return std::nullopt;
    return command_ + ways_->eventArguments(event);
  }
  [[nodiscard]] bool takesDayFromBus() const override { return ways_ && ways_->takesDayFromBus; }

 private:
  QStringList command_;
  const KnownProgram* ways_;
};

const KnownProgram* waysOf(const DesktopApplication& application) {
  const auto executable = QFileInfo(application.entry.command().value(0)).fileName();
  const auto* const found = std::ranges::find_if(knownPrograms(), [&](const KnownProgram& known) {
    return executable == known.executable || application.name == known.executable ||
           std::ranges::find(known.names, application.name) != known.names.end();
  });
  return found == knownPrograms().end() ? nullptr : found;
}

std::optional<DesktopApplication> firstKnown() {
  for (const auto& known : knownPrograms()) {
    if (auto application = applicationNamed(known.executable)) return application;
    for (const auto* name : known.names)
      if (auto application = applicationNamed(name)) return application;
  }
  return std::nullopt;
}

}  // namespace

std::unique_ptr<CalendarProgram> installedCalendarProgram() {
  auto application = defaultApplication(calendarFiles);
  if (!application) application = firstKnown();
  if (!application) application = anyApplication(calendarFiles);
  if (!application) return nullptr;
  return std::make_unique<InstalledCalendarProgram>(*application, waysOf(*application));
}

}  // namespace valdrix::desktop
