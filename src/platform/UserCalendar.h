#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "observation/Token.h"
#include "platform/Instant.h"

namespace valdrix::platform {

/// What a clock and a calendar on the wall show at an instant.
struct DateFields {
  std::int64_t year = 1970;
  unsigned month = 1;    ///< 1 to 12
  unsigned day = 1;      ///< 1 to 31
  unsigned weekday = 0;  ///< 0 for Monday to 6 for Sunday
  unsigned hour = 0;     ///< 0 to 23
  unsigned minute = 0;   ///< 0 to 59
  bool operator==(const DateFields&) const = default;
};

/// The wall clock, and the Gregorian calendar in the time zone that the system has now. Main thread
/// only; quick.
class UserCalendar {
 public:
  virtual ~UserCalendar() = default;

  [[nodiscard]] virtual Instant now() const = 0;
  /// The first instant of the day that `instant` lies in; not midnight where the clocks skip it.
  [[nodiscard]] virtual Instant startOfDay(Instant instant) const = 0;
  /// The same time of day so many days later, or the first instant after it where the clocks skip
  /// that time, or the earlier of two where they repeat it; nothing when that is out of the range
  /// of dates.
  [[nodiscard]] virtual std::optional<Instant> addDays(Instant instant,
                                                       std::int64_t days) const = 0;
  [[nodiscard]] virtual DateFields fields(Instant instant) const = 0;

  /// Calls `block` on the main thread after the clock was set, the machine woke up, the time zone
  /// changed, or a new day began.
  [[nodiscard]] virtual Token observeChanges(std::function<void()> block) = 0;
};

}  // namespace valdrix::platform
