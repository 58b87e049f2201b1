#pragma once

namespace valdrix::platform {

/// The shape of the pointer over the panel, as a stack. Main thread only.
class Cursor {
 public:
  virtual ~Cursor() = default;

  /// Shows the pointing hand until the matching `pop`.
  virtual void pushPointingHand() = 0;
  /// Takes back the latest push; without one it does nothing.
  virtual void pop() = 0;
};

}  // namespace valdrix::platform
