#pragma once

namespace valdrix::platform {

/// This program as something that the desktop starts at login. Main thread only; quick.
class LoginItem {
 public:
  enum class Status {
    notRegistered = 0,
    enabled = 1,
    /// Registered, but the user or the desktop holds it back.
    requiresApproval = 2,
    notFound = 3,
  };

  virtual ~LoginItem() = default;

  [[nodiscard]] virtual Status status() const = 0;
  /// Whether it worked; `status` tells what is the case now.
  virtual bool registerAtLogin() = 0;
  virtual bool unregisterAtLogin() = 0;
};

}  // namespace valdrix::platform
