#pragma once

#include <chrono>

#include <QTimeZone>

#include "platform/Instant.h"

namespace valdrix::desktop {

/// The time whose occurrences are wanted, and where.
struct VdirHorizon {
  platform::Instant from{};
  platform::Instant to{};
  QTimeZone zone{};
  platform::Instant today{};  ///< its beginning
  bool operator==(const VdirHorizon&) const = default;

  /// By how much an occurrence without a zone of its own moves, at most, when the user travels.
  static constexpr std::chrono::hours zoneShift{26};

  /// Whether a file whose next start is `nextStart` may have occurrences in this time, in whatever
  /// zone that was found out.
  [[nodiscard]] bool mayHold(platform::Instant nextStart) const {
    return nextStart < to + zoneShift;
  }
  /// From when on next starts are looked for: early enough to stay right after two changes of zone.
  [[nodiscard]] platform::Instant since() const { return from - 3 * zoneShift; }
  /// Whether next starts that were looked for from `since` on are right for this time.
  [[nodiscard]] bool isCoveredFrom(platform::Instant since) const {
    return since + zoneShift <= from;
  }
};

}  // namespace valdrix::desktop
