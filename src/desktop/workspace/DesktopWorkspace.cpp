#include "desktop/workspace/DesktopWorkspace.h"

#include <algorithm>
#include <utility>

#include <QFile>
#include <QStandardPaths>

#include "desktop/workspace/DesktopApplications.h"
#include "desktop/workspace/DetachedProgram.h"

namespace valdrix::desktop {

namespace {

constexpr std::string_view dayLinks = "ical://date/";
constexpr std::string_view eventLinks = "ical://ekevent/";
constexpr std::string_view settingsLinks = "x-apple.systempreferences:";

// The kernel refuses single arguments beyond 128 KiB, and percent encoding makes three of one.
constexpr std::size_t longestUrl = std::size_t{32} << 10U;

QString toQString(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

bool isControl(char c) { return (c >= 0 && c < ' ') || c == '\x7F'; }

bool openInBrowser(std::string_view url) {
  if (url.find(' ') != std::string_view::npos) return false;
  const auto scheme = toQString(url.substr(0, url.find(':')));
  const auto browser = anyApplication("x-scheme-handler/" + scheme);
  const auto command = browser ? browser->entry.command(toQString(url)) : std::nullopt;
  return command && startDetached(*command);
}

/// An identifier of the calendar server begins with that of its calendar.
CalendarEventName nameOf(const QString& identifier, const QString& calendar) {
  const bool isOnServer = !calendar.isEmpty() && identifier.startsWith(calendar + ':');
  if (!isOnServer) return {identifier, {}, {}};
  return {identifier, calendar, identifier.mid(calendar.size() + 1)};
}

}  // namespace

DesktopWorkspace::DesktopWorkspace(SessionBus& bus, Handlers handlers,
                                   std::filesystem::path commands)
    : handlers_(std::move(handlers)), commands_(std::move(commands)), korganizerDay_(bus) {}

std::filesystem::path DesktopWorkspace::standardFile() {
  const auto folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
  return std::filesystem::path(QFile::encodeName(folder).toStdString()) / "valdrix" /
         "programs.conf";
}

bool DesktopWorkspace::open(std::string_view url) {
  // One occurrence of many comes as its day and then the event; the day of another occurrence must
  // not take its place.
  const auto requested = std::exchange(requestedDay_, std::nullopt);
  const bool isUsable = url.size() <= longestUrl && std::ranges::none_of(url, isControl);
  if (!isUsable) return false;
  if (url.starts_with(dayLinks)) return openDay(url.substr(dayLinks.size()));
  if (url.starts_with(eventLinks)) return openEvent(url.substr(eventLinks.size()), requested);
  if (url.starts_with("https://") || url.starts_with("http://")) return openInBrowser(url);
  if (url.starts_with(settingsLinks)) return handlers_.openSettings && handlers_.openSettings(url);
  return false;
}

std::unique_ptr<CalendarProgram> DesktopWorkspace::calendarProgram() const {
  auto program = userCalendarProgram(commands_);
  return program ? std::move(program) : installedCalendarProgram();
}

bool DesktopWorkspace::openDay(std::string_view text) {
  const auto day = QDate::fromString(toQString(text), "yyyyMMdd");
  const auto program = calendarProgram();
  if (!day.isValid()) return false;
  requestedDay_ = {day, program && showDay(*program, day)};
  return requestedDay_->isShown;
}

bool DesktopWorkspace::openEvent(std::string_view identifier,
                                 const std::optional<RequestedDay>& requested) {
  const auto program = calendarProgram();
  if (identifier.empty() || !program) return false;
  const auto place = handlers_.findEvent(identifier);
  const auto event =
      nameOf(toQString(identifier), place ? toQString(place->calendarIdentifier) : QString());
  const auto knownDay = place ? place->day : QDate();
  const auto day = requested ? requested->day : knownDay;
  if (const auto command = program->showEvent(event, day)) return startDetached(*command);
  return (requested && requested->isShown) || showDay(*program, day);
}

bool DesktopWorkspace::showDay(const CalendarProgram& program, QDate day) {
  const auto command = program.showDay(day);
  if (!command || !startDetached(*command)) return false;
  if (program.takesDayFromBus() && day.isValid()) korganizerDay_.show(day);
  return true;
}

}  // namespace valdrix::desktop
