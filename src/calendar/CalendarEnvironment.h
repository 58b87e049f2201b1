#pragma once

#include "calendar/CalendarService.h"
#include "platform/Cursor.h"
#include "platform/Workspace.h"

namespace valdrix {

/// What the calendar's views work with. All of it outlives them.
struct CalendarEnvironment {
  const CalendarService* calendarService = nullptr;
  platform::Workspace* workspace = nullptr;
  platform::Cursor* cursor = nullptr;
  bool operator==(const CalendarEnvironment&) const = default;
};

}  // namespace valdrix
