#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "desktop/calendar/CalendarSource.h"
#include "observation/Listeners.h"

namespace valdrix::tests {

/// A source of calendars that shows what a test put there, whether it was started or not. Asked for
/// events it gives one for each calendar, named after it.
struct FakeCalendarSource final : desktop::CalendarSource {
  FakeCalendarSource(Reach howFar, std::vector<platform::EventCalendar> all)
      : itsReach(howFar), itsCalendars(std::move(all)) {}

  [[nodiscard]] Reach reach() const override { return itsReach; }
  void start() override { ++starts; }
  void stop() override { ++stops; }
  [[nodiscard]] std::vector<platform::EventCalendar> calendars() const override {
    return itsCalendars;
  }
  [[nodiscard]] std::vector<platform::Event> events(
      platform::Instant start, platform::Instant end,
      const std::vector<std::string>& identifiers) const override {
    std::vector<platform::Event> all;
    for (const auto& identifier : identifiers)
      all.push_back({.eventIdentifier = identifier,
                     .title = identifier,
                     .startDate = start,
                     .endDate = end,
                     .calendar = platform::EventCalendar{identifier, ""}});
    if (far.startDate >= start && far.startDate < end) all.push_back(far);
    return all;
  }
  [[nodiscard]] Token observeChanges(std::function<void()> block) override {
    return changes.add(std::move(block));
  }

  Reach itsReach;
  std::vector<platform::EventCalendar> itsCalendars;
  /// One more event, wherever it is asked for.
  platform::Event far{.eventIdentifier = "far", .startDate = platform::Instant::max()};
  int starts = 0;
  int stops = 0;
  Listeners<> changes;
};

}  // namespace valdrix::tests
