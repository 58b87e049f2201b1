#pragma once

namespace valdrix::platform {

/// Whether this process may intercept keys. Main thread only.
class Accessibility {
 public:
  virtual ~Accessibility() = default;

  /// Whether the keys that an installed tap would swallow all reach it and, where that is a
  /// permission, whether a tap can be installed at all. Never prompts and never waits.
  [[nodiscard]] virtual bool isProcessTrusted() = 0;
  /// The same, and when it cannot be and `prompt` is set, the user is told once how to change that.
  virtual bool isProcessTrustedWithOptions(bool prompt) = 0;
};

}  // namespace valdrix::platform
