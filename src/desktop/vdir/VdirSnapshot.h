#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/EventStore.h"

namespace valdrix::desktop {

/// Calendars and the occurrences of some time, ordered so that those of a window are found without
/// looking at the others. Immutable, so that threads can share it.
class VdirSnapshot {
 public:
  /// So many occurrences are held at most, or fewer when each has kilobytes of text, so that
  /// whatever files say, copying and sorting those of a window takes less than a frame.
  static constexpr std::size_t maximumSize = 4000;

  struct Occurrence {
    /// Without its calendar.
    std::shared_ptr<const platform::Event> event;
    std::uint32_t calendar;  ///< place in `calendars`
  };

  VdirSnapshot() = default;
  /// Of too many occurrences, those nearest to `today` are held: the earliest that end after it,
  /// then the latest of those before.
  VdirSnapshot(std::vector<platform::EventCalendar> calendars, std::vector<Occurrence> occurrences,
               platform::Instant today);

  [[nodiscard]] const std::vector<platform::EventCalendar>& calendars() const { return calendars_; }
  /// As `EventStore::events`; ordered by start.
  [[nodiscard]] std::vector<platform::Event> events(
      platform::Instant start, platform::Instant end,
      const std::vector<std::string>& calendarIdentifiers) const;

 private:
  std::vector<platform::EventCalendar> calendars_;
  std::vector<Occurrence> occurrences_;        ///< by start
  std::vector<platform::Instant> latestEnds_;  ///< the latest end up to and with each of them
};

}  // namespace valdrix::desktop
