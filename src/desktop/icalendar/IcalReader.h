#pragma once

#include <string_view>
#include <vector>

#include "desktop/icalendar/IcalEvent.h"
#include "desktop/icalendar/RecurrenceWalk.h"

namespace valdrix::desktop {

/// Reads the VEVENTs of an untrusted text, wherever they stand in it.
///
/// Each stands for itself: one that makes no sense is left out, one whose END is missing ends where
/// the next component begins. libical's parser gives up the whole text then, follows nested
/// components without a bound, and makes an object of every line, most of which nobody asks for; it
/// is used for the rules alone. When interrupted, gives what was read until then.
[[nodiscard]] std::vector<IcalEvent> readIcalEvents(std::string_view text,
                                                    Interruption& interruption);

}  // namespace valdrix::desktop
