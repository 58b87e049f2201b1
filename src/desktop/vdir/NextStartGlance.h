#pragma once

#include <optional>
#include <string_view>

#include "platform/Instant.h"

namespace valdrix::desktop {

/// What a glance at an iCalendar text tells about the next start in it, at a hundredth of what
/// parsing costs: an instant that no occurrence which ends after `since` starts before, in whatever
/// zone; `VdirFile::never` when there is none; nothing when only the parser can tell.
[[nodiscard]] std::optional<platform::Instant> glanceNextStart(std::string_view text,
                                                               platform::Instant since);

}  // namespace valdrix::desktop
