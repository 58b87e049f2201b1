#pragma once

namespace valdrix::platform {

enum class HapticPattern { generic = 0, alignment = 1, levelChange = 2 };
enum class HapticPerformanceTime { standard = 0, now = 1, drawCompleted = 2 };

/// Feedback that the user feels. Main thread only; never waits.
class Haptics {
 public:
  virtual ~Haptics() = default;

  /// Asks for `pattern`; silent where the machine has nothing to feel.
  virtual void performFeedbackPattern(HapticPattern pattern, HapticPerformanceTime time) = 0;
};

}  // namespace valdrix::platform
