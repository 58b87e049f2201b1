#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "desktop/vdir/VdirFolder.h"
#include "desktop/vdir/VdirSnapshot.h"

namespace valdrix::desktop {

/// Makes a snapshot of folders, and gives each calendar in it an identifier: the name of its folder
/// or file. Where that is taken already, a hash of the path follows after a `~`, so that it is the
/// same again at the next start. A comma is written `%2C`, as lists of identifiers need it.
class VdirCalendars {
 public:
  /// `environment` says what home folder the names of roots may be shortened by.
  explicit VdirCalendars(const std::map<std::string, std::string>& environment);

  void add(const VdirFolder& folder);
  /// `today` as in `VdirSnapshot`.
  [[nodiscard]] VdirSnapshot snapshot(platform::Instant today) &&;

 private:
  std::uint32_t addCalendar(const CalendarFolder& where, const std::filesystem::path& path,
                            const std::string& title, const std::optional<view::Color>& color);
  [[nodiscard]] std::string identifierFor(const std::filesystem::path& path);
  [[nodiscard]] std::string accountFor(const std::filesystem::path& root) const;

  std::string home_;
  std::set<std::string> taken_;
  std::vector<platform::EventCalendar> calendars_;
  std::vector<VdirSnapshot::Occurrence> occurrences_;
};

}  // namespace valdrix::desktop
