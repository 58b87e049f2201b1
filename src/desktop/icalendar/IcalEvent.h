#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "desktop/icalendar/CalendarZone.h"
#include "desktop/icalendar/IcalValues.h"
#include "desktop/icalendar/RecurrenceRule.h"

namespace valdrix::desktop {

/// A DATE or DATE-TIME and the zone that it is in.
struct IcalTime {
  WallTime wall;
  bool isDate = false;
  /// Null for the zone of whoever looks, as for all dates.
  std::shared_ptr<const CalendarZone> zone{};
};

/// How long something lasts from its start: until a time, or for a while; with neither, an all-day
/// event lasts a day and any other no time.
struct IcalExtent {
  std::optional<IcalTime> end{};
  std::optional<IcalDuration> duration{};
};

/// An additional start; it lasts as long as the event unless it says otherwise.
struct IcalAdditionalStart {
  IcalTime start;
  IcalExtent extent{};
};

/// What makes an event recur.
struct IcalRecurrence {
  std::vector<RecurrenceRule> rules{};
  std::vector<IcalAdditionalStart> additions{};
  std::vector<IcalTime> exceptions{};
};

/// A VEVENT, as much of it as valdrix shows.
struct IcalEvent {
  std::optional<std::string> uid{};
  std::optional<std::string> title{};
  std::int64_t sequence = 0;
  IcalTime start{};
  IcalExtent extent{};
  bool isCancelled = false;
  /// Which occurrence of the event with the same UID this one stands for.
  std::optional<IcalTime> recurrenceId{};
  /// It stands for all later ones too.
  bool isThisAndFuture = false;
  /// Null for an event that does not recur.
  std::unique_ptr<IcalRecurrence> recurrence{};
};

}  // namespace valdrix::desktop
