#pragma once

#include <chrono>
#include <optional>
#include <vector>

#include "desktop/icalendar/IcalEvent.h"
#include "desktop/icalendar/OccurrencePlan.h"
#include "desktop/icalendar/RecurrenceWalk.h"
#include "platform/EventStore.h"

namespace valdrix::desktop {

/// All that a text says of one event: the event itself, and the occurrences that were changed.
class EventSeries {
 public:
  /// From `start` up to, but not including, `end`.
  struct Window {
    platform::Instant start;
    platform::Instant end;
  };

  explicit EventSeries(IcalEvent event);

  /// Takes in another VEVENT with the same UID; gives it back when it is an event of its own.
  [[nodiscard]] std::optional<IcalEvent> merge(IcalEvent event);

  [[nodiscard]] const std::optional<std::string>& uid() const;

  /// Adds the occurrences that overlap `window`; `local` is the zone of floating times. With too
  /// small a budget, or more than 10 000 of them, some are missing.
  void collect(Window window, const CalendarZone& local, WorkBudget& budget,
               std::vector<platform::Event>& events) const;

  /// As `IcalendarText::nextStart`.
  [[nodiscard]] std::optional<platform::Instant> nextStart(platform::Instant after,
                                                           const CalendarZone& local,
                                                           WorkBudget& budget) const;

 private:
  [[nodiscard]] OccurrencePlan plan(const CalendarZone& local) const;

  std::optional<IcalEvent> master_;
  std::vector<IcalEvent> overrides_;
};

}  // namespace valdrix::desktop
