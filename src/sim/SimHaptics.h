#pragma once

#include <string>

#include "platform/Haptics.h"
#include "sim/Trace.h"

namespace valdrix::sim {

/// The simulated feedback, felt by the trace alone.
class SimHaptics final : public platform::Haptics {
 public:
  explicit SimHaptics(Trace& trace) : trace_(trace) {}

  void performFeedbackPattern(platform::HapticPattern pattern,
                              platform::HapticPerformanceTime time) override {
    trace_.add("haptic pattern " + std::to_string(static_cast<int>(pattern)) + " time " +
               std::to_string(static_cast<int>(time)));
  }

 private:
  Trace& trace_;
};

}  // namespace valdrix::sim
