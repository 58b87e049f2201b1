#include "desktop/session/FeedbackHaptics.h"

#include <QDBusMessage>
#include <QVariantMap>

namespace valdrix::desktop {

// The service knows events, not patterns: all of ours are the short tap of a button, and all happen
// at once.
void FeedbackHaptics::performFeedbackPattern(platform::HapticPattern,
                                             platform::HapticPerformanceTime) {
  constexpr int endsByItself = -1;
  if (!bus_.connection()) return;
  auto message = QDBusMessage::createMethodCall("org.sigxcpu.Feedback", "/org/sigxcpu/Feedback",
                                                "org.sigxcpu.Feedback", "TriggerFeedback");
  message.setAutoStartService(false);
  message << "valdrix"
          << "button-pressed" << QVariantMap() << endsByItself;
  // Sent without asking for a reply: where there is no service, the bus drops it.
  (void)bus_.connection()->send(message);
}

}  // namespace valdrix::desktop
