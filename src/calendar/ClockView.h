#pragma once

#include "calendar/CalendarService.h"
#include "view/View.h"

namespace valdrix {

/// Today's date and the time, to the second while it can be seen.
struct ClockView {
  const CalendarService* calendarService = nullptr;

  [[nodiscard]] view::View body() const;
  bool operator==(const ClockView&) const = default;
};

}  // namespace valdrix
