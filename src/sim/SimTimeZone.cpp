#include "sim/SimTimeZone.h"

namespace valdrix::sim {

using platform::Instant;
using std::chrono::seconds;

seconds SimTimeZone::offsetAt(Instant instant) const {
  seconds offset = offset_;
  for (const auto& change : changes_)
    if (change.at <= instant) offset = change.offset;
  return offset;
}

SimTimeZone::LocalTime SimTimeZone::localTime(Instant instant) const {
  return LocalTime(instant.time_since_epoch() + offsetAt(instant));
}

Instant SimTimeZone::instantAt(LocalTime time) const {
  const auto at = [time](seconds offset) { return Instant(time.time_since_epoch() - offset); };
  seconds offset = offset_;
  for (const auto& change : changes_) {
    if (at(offset) < change.at) return at(offset);
    // The clocks were put forward over that time.
    if (at(change.offset) < change.at) return change.at;
    offset = change.offset;
  }
  return at(offset);
}

}  // namespace valdrix::sim
