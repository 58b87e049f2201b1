#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <thread>

namespace valdrix::bench {

using Clock = std::chrono::steady_clock;

inline double secondsSince(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

inline void pause(double seconds) {
  std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
}

/// Seconds from `start` until `condition` was seen to hold; nothing when it took longer than
/// `limit`. Looks about 4000 times a second.
inline std::optional<double> secondsUntil(Clock::time_point start,
                                          const std::function<bool()>& condition,
                                          double limit = 10) {
  while (!condition()) {
    if (secondsSince(start) > limit) return std::nullopt;
    pause(0.0002);
  }
  return secondsSince(start);
}

}  // namespace valdrix::bench
