#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace valdrix::desktop {

/// The places (see `VdirPaths`) that the user's own list names, one a line.
[[nodiscard]] std::vector<std::string> placesInSettings(std::string_view text);
/// The places of a khal configuration's calendars; without those of its birthdays.
[[nodiscard]] std::vector<std::string> placesInKhal(std::string_view text);
/// The folders and files that a vdirsyncer configuration keeps calendars in.
[[nodiscard]] std::vector<std::string> placesInVdirsyncer(std::string_view text);

/// `place` with `~` and variables replaced; an unknown variable stays as it is.
[[nodiscard]] std::string expandPlace(std::string_view place,
                                      const std::map<std::string, std::string>& environment);

}  // namespace valdrix::desktop
