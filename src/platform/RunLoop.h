#pragma once

#include <functional>

#include "observation/Token.h"

namespace valdrix::platform {

/// The main thread's loop and its clock: the only source of time that the core has.
class RunLoop {
 public:
  virtual ~RunLoop() = default;

  /// Seconds on a clock that never goes back, from an arbitrary start. Only differences mean
  /// anything.
  [[nodiscard]] virtual double now() const = 0;

  /// Calls `block` on the main thread after `interval` seconds, once or, when `repeats`, every
  /// `interval` seconds from now, until the token ends. A tick may be late; a loop that was held up
  /// makes up for missed ticks with one. Any positive interval up to infinity is valid, also one
  /// longer than the machine will live; one of 0 or less runs at the loop's next turn, once.
  /// `block` may end its own timer.
  [[nodiscard]] virtual Token scheduleTimer(double interval, bool repeats,
                                            std::function<void()> block) = 0;

  /// Runs `block` on the main thread at the loop's next turn, after what was submitted before it.
  /// May be called from any thread.
  virtual void async(std::function<void()> block) = 0;
};

}  // namespace valdrix::platform
