#pragma once

#include <vector>

#include "observation/Observed.h"
#include "observation/Token.h"
#include "platform/Accessibility.h"
#include "platform/RunLoop.h"
#include "platform/Workspace.h"
#include "view/Form.h"

namespace valdrix {

/// Whether the program may take keys and, where it may not, a button that leads to where that is
/// granted. Nobody tells when the answer changes, so it is asked for again every 1.5 seconds, for
/// as long as this lives: it is to live no longer than it is shown. Main thread only.
class AccessibilityStatusView {
 public:
  /// All ports must outlive it.
  AccessibilityStatusView(platform::Accessibility& accessibility, platform::RunLoop& runLoop,
                          platform::Workspace& workspace);

  [[nodiscard]] std::vector<view::FormRow> body() const;

 private:
  platform::Workspace& workspace_;
  Observed<bool> trusted_;
  Token timer_;
};

}  // namespace valdrix
