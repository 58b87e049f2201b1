#pragma once

#include <vector>

#include "calendar/CalendarService.h"
#include "view/Form.h"

namespace valdrix {

/// Whether the calendar may be read and, where it may not, a button that helps.
struct CalendarPermissionRow {
  CalendarService& calendarService;

  [[nodiscard]] std::vector<view::FormRow> body() const;
};

}  // namespace valdrix
