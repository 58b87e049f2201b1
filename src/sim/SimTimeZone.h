#pragma once

#include <chrono>
#include <vector>

#include "platform/Instant.h"

namespace valdrix::sim {

/// A time zone: how far its clocks are ahead of UTC, and when that changes.
class SimTimeZone {
 public:
  /// What the clocks show, without saying where.
  using LocalTime = std::chrono::local_time<std::chrono::milliseconds>;

  struct Change {
    platform::Instant at;
    std::chrono::seconds offset;
  };

  /// `offset` holds until the first of `changes`, which are in the order of their times.
  explicit SimTimeZone(std::chrono::seconds offset, std::vector<Change> changes = {})
      : offset_(offset), changes_(std::move(changes)) {}

  [[nodiscard]] std::chrono::seconds offsetAt(platform::Instant instant) const;
  [[nodiscard]] LocalTime localTime(platform::Instant instant) const;
  /// When the clocks show `time`: the earlier of two instants where they repeat it, and the first
  /// instant after it where they skip it.
  [[nodiscard]] platform::Instant instantAt(LocalTime time) const;

 private:
  std::chrono::seconds offset_;
  std::vector<Change> changes_;
};

}  // namespace valdrix::sim
