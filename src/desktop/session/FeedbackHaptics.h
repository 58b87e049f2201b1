#pragma once

#include "desktop/session/SessionBus.h"
#include "platform/Haptics.h"

namespace valdrix::desktop {

/// Feedback by the session's feedback service, where one runs; it is never started for this.
class FeedbackHaptics final : public platform::Haptics {
 public:
  /// `bus` outlives this.
  explicit FeedbackHaptics(SessionBus& bus) : bus_(bus) {}

  void performFeedbackPattern(platform::HapticPattern pattern,
                              platform::HapticPerformanceTime time) override;

 private:
  SessionBus& bus_;
};

}  // namespace valdrix::desktop
