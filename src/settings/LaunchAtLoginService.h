#pragma once

#include "observation/Observed.h"
#include "platform/LoginItem.h"

namespace valdrix {

/// Whether the program starts at login. The desktop's own record is the only truth; this mirrors it
/// for views. Main thread only.
class LaunchAtLoginService {
 public:
  /// `loginItem` must outlive it.
  explicit LaunchAtLoginService(platform::LoginItem& loginItem);

  /// As of the start, or of the latest `setEnabled` or `refreshStatus`. One that the user or the
  /// desktop holds back is not enabled.
  [[nodiscard]] bool isEnabled() const { return isEnabled_; }
  /// Asks the desktop for it, whatever is the case now, and shows what came of it.
  void setEnabled(bool isEnabled);
  /// Asks the desktop how things stand; it may have changed them by itself.
  void refreshStatus();

 private:
  platform::LoginItem& loginItem_;
  Observed<bool> isEnabled_;
};

}  // namespace valdrix
