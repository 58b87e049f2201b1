#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <utility>

#include "desktop/icalendar/IcalValues.h"

namespace valdrix::desktop {

/// Whether work shall end before it is done, as whoever waits for it says. Asks now and then only,
/// since much of the work costs less than asking.
class Interruption {
 public:
  /// An empty `isEnding` never interrupts.
  explicit Interruption(std::function<bool()> isEnding) : isEnding_(std::move(isEnding)) {}

  /// To be called after every so many steps of about ten nanoseconds. Once true, always true.
  [[nodiscard]] bool isDueAfter(std::int64_t steps) {
    constexpr std::int64_t stepsBetweenQuestions = 20'000;
    if (isDue_ || !isEnding_) return isDue_;
    unasked_ += steps;
    if (unasked_ < stepsBetweenQuestions) return false;
    unasked_ = 0;
    isDue_ = isEnding_();
    return isDue_;
  }

 private:
  std::function<bool()> isEnding_;
  std::int64_t unasked_ = 0;
  bool isDue_ = false;
};

/// How much a question about untrusted events may cost, in steps of about ten nanoseconds.
class WorkBudget {
 public:
  explicit WorkBudget(std::int64_t steps) : steps_(steps) {}
  /// Nothing is left either once the interruption is due; it must outlive this.
  WorkBudget(std::int64_t steps, Interruption& interruption)
      : steps_(steps), interruption_(&interruption) {}

  /// Takes some steps; whether there were as many.
  [[nodiscard]] bool spend(std::int64_t steps) {
    if (steps > steps_ || (interruption_ && interruption_->isDueAfter(steps))) return false;
    steps_ -= steps;
    return true;
  }
  /// Gives back what was not needed.
  void refund(std::int64_t steps) { steps_ += steps; }

  /// Notes what libical took, which nobody can tell beforehand: to find that a rule has no
  /// occurrence may take it a second.
  void noteLibical(std::chrono::nanoseconds time) { byLibical_ += time; }
  /// Whether it may be asked for more. What is followed without it goes on.
  [[nodiscard]] bool allowsLibical() const { return byLibical_ < std::chrono::seconds(2); }

 private:
  std::int64_t steps_;
  std::chrono::nanoseconds byLibical_{};
  Interruption* interruption_ = nullptr;
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
