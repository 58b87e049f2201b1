#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include <QDate>

#include "desktop/session/SessionBus.h"
#include "desktop/workspace/CalendarPrograms.h"
#include "desktop/workspace/KOrganizerDay.h"
#include "platform/Workspace.h"

namespace valdrix::desktop {

/// Starts the user's programs with an argument vector, never through a shell.
///
/// Which program that is, is found out anew at each call, so that a new choice counts at once.
/// Links: http and https go to the browser; ical://date/YYYYMMDD and ical://ekevent/IDENTIFIER to
/// the calendar program, and an event that it cannot show becomes the event's day; those of the
/// privacy settings to whoever took them on.
class DesktopWorkspace final : public platform::Workspace {
 public:
  /// What is known of an event.
  struct EventPlace {
    QDate day;
    std::string calendarIdentifier;
  };
  struct Handlers {
    /// Looks an event up; nothing when it is not known.
    std::function<std::optional<EventPlace>(std::string_view identifier)> findEvent;
    /// Opens a page of the system's settings; whether there is one. May be empty.
    std::function<bool(std::string_view url)> openSettings{};
  };

  /// `commands` is where the user may have written down their own calendar program; it need not
  /// exist. `bus` outlives this.
  DesktopWorkspace(SessionBus& bus, Handlers handlers,
                   std::filesystem::path commands = standardFile());
  /// Where that is: `valdrix/programs.conf` in the folder for configurations.
  [[nodiscard]] static std::filesystem::path standardFile();

  bool open(std::string_view url) override;

 private:
  struct RequestedDay {
    QDate day;
    bool isShown;
  };

  [[nodiscard]] std::unique_ptr<CalendarProgram> calendarProgram() const;
  bool openDay(std::string_view day);
  bool openEvent(std::string_view identifier, const std::optional<RequestedDay>& requested);
  bool showDay(const CalendarProgram& program, QDate day);

  Handlers handlers_;
  std::filesystem::path commands_;
  KOrganizerDay korganizerDay_;
  /// That of the link before this one, if it named one.
  std::optional<RequestedDay> requestedDay_;
};

}  // namespace valdrix::desktop
