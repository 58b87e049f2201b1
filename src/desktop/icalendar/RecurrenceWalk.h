#pragma once

#include <cstdint>
#include <functional>

#include "desktop/icalendar/IcalValues.h"

namespace valdrix::desktop {

/// How much a question about untrusted events may cost, in steps of about ten nanoseconds.
class WorkBudget {
 public:
  explicit WorkBudget(std::int64_t steps) : steps_(steps) {}

  /// Takes some steps; whether there were as many.
  [[nodiscard]] bool spend(std::int64_t steps) {
    if (steps > steps_) return false;
    steps_ -= steps;
    return true;
  }
  /// Gives back what was not needed.
  void refund(std::int64_t steps) { steps_ += steps; }

 private:
  std::int64_t steps_;
};

struct WallRange {
  WallTime from;
  WallTime to;  ///< included
};

/// Takes an occurrence and tells whether to go on.
using OccurrenceTaker = std::function<bool(WallTime)>;

/// How a walk over occurrences ended.
enum class WalkEnd {
  exhausted,  ///< there are no more occurrences, in the range or after it
  finished,   ///< all occurrences of the range were offered
  stopped,    ///< the taker asked to stop
  tooCostly,  ///< the budget did not suffice; some occurrences may be missing
};

}  // namespace valdrix::desktop
