#pragma once

#include <algorithm>
#include <chrono>

namespace valdrix::desktop {

/// Lets the first of a row of doings happen at once, and those that follow soon at growing
/// distances, so that a burst gives few.
class Pace {
 public:
  using Clock = std::chrono::steady_clock;
  static constexpr std::chrono::milliseconds shortest{50};
  static constexpr std::chrono::milliseconds longest{250};

  /// From when on the next one may happen.
  [[nodiscard]] Clock::time_point next() const { return last_ + distance_; }
  void note(Clock::time_point now) {
    const bool isInRow = now < next() + shortest;
    distance_ = isInRow ? std::min(distance_ * 2, longest) : shortest;
    last_ = now;
  }

 private:
  Clock::time_point last_{};
  std::chrono::milliseconds distance_ = shortest;
};

}  // namespace valdrix::desktop
