#pragma once

#include "platform/Application.h"
#include "sim/Trace.h"

namespace valdrix::sim {

/// The program as the simulated desktop sees it. Both requests are traced.
class SimApplication final : public platform::Application {
 public:
  explicit SimApplication(Trace& trace) : trace_(trace) {}

  void setActivationPolicy(platform::ActivationPolicy policy) override;
  void activate() override { trace_.add("application activate"); }
  void terminate() override;

  [[nodiscard]] platform::ActivationPolicy activationPolicy() const { return policy_; }
  /// Whether the program has asked to end.
  [[nodiscard]] bool isTerminated() const { return isTerminated_; }

 private:
  Trace& trace_;
  platform::ActivationPolicy policy_ = platform::ActivationPolicy::regular;
  bool isTerminated_ = false;
};

}  // namespace valdrix::sim
