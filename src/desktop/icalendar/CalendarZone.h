#pragma once

#include <chrono>
#include <memory>
#include <string_view>
#include <vector>

#include <QTimeZone>

#include "desktop/icalendar/IcalValues.h"

namespace valdrix::desktop {

/// Between instants and what clocks on the wall show, by the rules of RFC 5545 (3.3.5): a time that
/// the clocks skip is read by the offset before the gap, and of one that they repeat the first is
/// meant. Immutable, so any number of threads may read it.
///
/// A table of all changes, since a look-up in QTimeZone costs a hundred times as much, and calls a
/// time in a gap invalid.
class CalendarZone {
 public:
  struct Change {
    std::chrono::sys_seconds at;
    std::chrono::seconds before;  ///< offset from UTC until then
    std::chrono::seconds after;
  };

  explicit CalendarZone(std::chrono::seconds offset) : firstOffset_(offset) {}
  /// In any order; not empty.
  explicit CalendarZone(std::vector<Change> changes);

  [[nodiscard]] std::chrono::sys_seconds toInstant(WallTime wall) const;
  [[nodiscard]] WallTime toWall(std::chrono::sys_seconds instant) const;

  [[nodiscard]] static std::shared_ptr<const CalendarZone> utc();
  /// The changes of 1900 to 2199.
  [[nodiscard]] static std::shared_ptr<const CalendarZone> of(const QTimeZone& zone);
  /// The zone that the system knows by this TZID: an IANA name, also behind a writer's prefix as in
  /// `/citadel.org/20210210_1/Europe/Paris`, or a Windows name. Null when it knows none.
  [[nodiscard]] static std::shared_ptr<const CalendarZone> named(std::string_view tzid);

 private:
  std::chrono::seconds firstOffset_;
  std::vector<Change> changes_;
};

}  // namespace valdrix::desktop
