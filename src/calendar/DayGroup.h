#pragma once

#include <string>
#include <vector>

#include "platform/EventStore.h"
#include "platform/UserCalendar.h"

namespace valdrix {

/// The events that start on one day.
struct DayGroup {
  /// The day's first instant, by which it is known.
  platform::Instant day{};
  /// By start; those that start together in the order in which they came.
  std::vector<platform::Event> events;
  bool operator==(const DayGroup&) const = default;
};

/// Events by the day on which they start, the earliest day first. An event that began on an earlier
/// day and still runs is under that day.
[[nodiscard]] std::vector<DayGroup> groupEventsByDay(const std::vector<platform::Event>& events,
                                                     const platform::UserCalendar& calendar);

/// What a day is called now: "aujourd'hui", "demain" or its date, in lower case.
[[nodiscard]] std::string dayLabel(platform::Instant day, const platform::UserCalendar& calendar);

}  // namespace valdrix
