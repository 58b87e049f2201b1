#pragma once

#include "calendar/CalendarEnvironment.h"
#include "view/View.h"

namespace valdrix {

/// What the expanded panel shows: the clock, and beside it the upcoming events, or why there are
/// none to be seen.
struct CalendarView {
  CalendarEnvironment environment{};

  [[nodiscard]] view::View body() const;
  bool operator==(const CalendarView&) const = default;

 private:
  [[nodiscard]] view::View content() const;
};

}  // namespace valdrix
