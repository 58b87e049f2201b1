#pragma once

#include <functional>

#include "desktop/keys/MediaKeyTaps.h"
#include "desktop/session/DesktopNotification.h"
#include "desktop/session/PrivacyRecord.h"
#include "observation/Token.h"
#include "platform/RunLoop.h"

namespace valdrix::desktop {

/// Tells the user that keys are missing: of each key once for each cause, which the record
/// remembers, and not anew at each login. Desktops take and leave keys while they start, so a loss
/// is told of when it has lasted ten seconds.
class KeyLossNotice {
 public:
  using Show = std::function<void(const DesktopNotification::Text&)>;

  /// `show` tells the user; the others outlive this.
  KeyLossNotice(MediaKeyTaps& keys, PrivacyRecord& record, platform::RunLoop& runLoop, Show show);

 private:
  void accountChanged();
  void tell();

  MediaKeyTaps& keys_;
  PrivacyRecord& record_;
  platform::RunLoop& runLoop_;
  Show show_;
  Token observer_;
  Token patience_;
};

}  // namespace valdrix::desktop
