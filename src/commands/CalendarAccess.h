#pragma once

#include <string>

#include "calendar/CalendarService.h"
#include "platform/EventStore.h"

namespace valdrix::commands {

/// Has the user asked for access to the calendars, unless the answer is known, and says at once in
/// one line, for the user, which of the two it is. `eventStore` is the service's.
[[nodiscard]] std::string requestCalendarAccess(CalendarService& service,
                                                const platform::EventStore& eventStore);

}  // namespace valdrix::commands
