#include "sim/SimAccessibility.h"

namespace valdrix::sim {

bool SimAccessibility::isProcessTrusted() {
  trace_.add(isTrusted_ ? "accessibility asked: trusted" : "accessibility asked: not trusted");
  return isTrusted_;
}

bool SimAccessibility::isProcessTrustedWithOptions(bool prompt) {
  const bool isTrusted = isProcessTrusted();
  if (prompt && !isTrusted && !hasPrompted_) {
    hasPrompted_ = true;
    trace_.add("accessibility prompt");
  }
  return isTrusted;
}

void SimAccessibility::setTrusted(bool isTrusted) {
  isTrusted_ = isTrusted;
  trace_.add(isTrusted ? "accessibility granted" : "accessibility revoked");
}

}  // namespace valdrix::sim
