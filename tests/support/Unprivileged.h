#pragma once

#include <unistd.h>

namespace valdrix::tests {

/// While it lives, root's tests run under an ordinary user's permissions, so that a read-only file
/// is one. Does nothing for others.
class Unprivileged {
 public:
  Unprivileged() : isRoot_(::geteuid() == 0) {
    constexpr uid_t nobody = 65534;
    if (isRoot_) isActive_ = ::seteuid(nobody) == 0;
  }
  ~Unprivileged() {
    if (isRoot_ && isActive_) isActive_ = ::seteuid(0) != 0;
  }
  Unprivileged(const Unprivileged&) = delete;
  Unprivileged& operator=(const Unprivileged&) = delete;

 private:
  bool isRoot_;
  bool isActive_ = false;
};

}  // namespace valdrix::tests
