#pragma once

#include <string>

#include "calendar/CalendarEnvironment.h"
#include "observation/Observed.h"
#include "platform/EventStore.h"
#include "view/View.h"

namespace valdrix {

/// One event of the list: the colour of its calendar, when it is and its title. A click opens it in
/// the user's calendar program.
struct EventRow {
  platform::Event event;
  CalendarEnvironment environment{};

  struct State {
    Observed<bool> isHovered{false};
  };

  /// "journée" for a whole day, else start and end: "09:00 – 10:30".
  [[nodiscard]] static std::string timeText(const platform::Event& event,
                                            const platform::UserCalendar& calendar);
  /// Asks the calendar program to show the event; one without an identifier cannot be shown.
  void openInCalendar() const;

  [[nodiscard]] view::View body(State& state) const;
  bool operator==(const EventRow&) const = default;

 private:
  /// Asks for the day first: the link of an event that repeats says nothing of which occurrence.
  void openOccurrenceInCalendar(const std::string& identifier, platform::Instant date) const;
  [[nodiscard]] view::View label() const;
};

}  // namespace valdrix
