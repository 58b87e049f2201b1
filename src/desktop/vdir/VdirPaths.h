#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace valdrix::desktop {

/// Where folders of calendars are looked for. Nothing of it needs to exist, now or ever.
///
/// A *place* is a folder that holds calendars as sub-folders, or a calendar itself, or a single
/// .ics file. In what users and other programs write, a place may begin with `~`, name environment
/// variables (`$NAME`, `${NAME}`) and have the wildcards `*`, `?` and `[…]` in its parts.
struct VdirPaths {
  /// Places that come first, in this order.
  std::vector<std::string> places;
  /// The user's own list of places, one a line; `#` begins a comment line.
  std::filesystem::path settings;
  /// Well-known places, after the user's own.
  std::vector<std::string> wellKnown;
  /// Configurations of the calendar program khal, and of the synchroniser vdirsyncer.
  std::vector<std::filesystem::path> khal;
  std::vector<std::filesystem::path> vdirsyncer;
  /// What is kept of one run to start the next one quickly; empty for nothing.
  std::filesystem::path index;
  /// For `~` (HOME) and variables in places.
  std::map<std::string, std::string> environment;

  /// Those of this user, from this process's environment.
  [[nodiscard]] static VdirPaths standard();
};

}  // namespace valdrix::desktop
