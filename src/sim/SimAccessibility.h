#pragma once

#include "platform/Accessibility.h"
#include "sim/Trace.h"

namespace valdrix::sim {

/// The simulated desktop's trust in this process, which the user of a scenario grants or refuses.
class SimAccessibility final : public platform::Accessibility {
 public:
  explicit SimAccessibility(Trace& trace) : trace_(trace) {}

  [[nodiscard]] bool isProcessTrusted() override;
  bool isProcessTrustedWithOptions(bool prompt) override;

  /// Trusted at first.
  void setTrusted(bool isTrusted);
  /// The trust itself, without a question that leaves a trace.
  [[nodiscard]] bool trust() const { return isTrusted_; }
  /// Whether the user has been told how to grant it.
  [[nodiscard]] bool hasPrompted() const { return hasPrompted_; }

 private:
  Trace& trace_;
  bool isTrusted_ = true;
  bool hasPrompted_ = false;
};

}  // namespace valdrix::sim
