#pragma once

namespace valdrix::platform {

/// Whether this process may intercept keys. Main thread only.
class Accessibility {
 public:
  virtual ~Accessibility() = default;

  /// Whether a tap can be installed now. Never prompts and never waits.
  [[nodiscard]] virtual bool isProcessTrusted() = 0;
  /// The same, and when it cannot be and `prompt` is set, the user is told once how to change that.
  virtual bool isProcessTrustedWithOptions(bool prompt) = 0;
};

}  // namespace valdrix::platform
