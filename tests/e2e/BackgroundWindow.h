#pragma once

#include <QColor>

#include "desktop/x11/XcbHandles.h"
#include "tests/support/VirtualDisplay.h"

namespace valdrix::tests {

/// What lies below the panel: a window of one colour over the whole screen that counts the clicks
/// that reach it.
class BackgroundWindow {
 public:
  static constexpr QRgb color = 0xFF3A6EA5;

  explicit BackgroundWindow(VirtualDisplay& display);

  /// Presses of the main button that it got so far.
  [[nodiscard]] int presses();

 private:
  desktop::XcbConnection connection_;
  int presses_ = 0;
};

}  // namespace valdrix::tests
