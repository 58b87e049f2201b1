#pragma once

#include <vector>

#include "calendar/CalendarEnvironment.h"
#include "platform/EventStore.h"
#include "view/View.h"

namespace valdrix {

/// The upcoming events, day by day, or a few words when there are none.
struct EventListView {
  std::vector<platform::Event> events;
  CalendarEnvironment environment{};

  /// About how tall the list of `events` is, in points; known before it is laid out.
  [[nodiscard]] static double estimatedHeight(const std::vector<platform::Event>& events,
                                              const platform::UserCalendar& calendar);

  [[nodiscard]] view::View body() const;
  bool operator==(const EventListView&) const = default;
};

}  // namespace valdrix
