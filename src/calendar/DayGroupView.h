#pragma once

#include "calendar/CalendarEnvironment.h"
#include "calendar/DayGroup.h"
#include "view/View.h"

namespace valdrix {

/// One day of the list: its name and a row for each of its events.
struct DayGroupView {
  /// Between two events, in points.
  static constexpr double rowSpacing = 3;

  DayGroup group;
  CalendarEnvironment environment{};

  [[nodiscard]] view::View body() const;
  bool operator==(const DayGroupView&) const = default;
};

}  // namespace valdrix
