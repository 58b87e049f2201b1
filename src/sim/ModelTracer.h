#pragma once

#include <string>
#include <vector>

#include "notch/NotchViewModel.h"
#include "observation/Lifetime.h"
#include "observation/Observer.h"
#include "platform/RunLoop.h"
#include "sim/Trace.h"

namespace valdrix::sim {

/// Traces what the notch shows: each turn of the loop that changed it leaves a line for every value
/// that is different afterwards.
class ModelTracer {
 public:
  /// Traces changes from now on. All must outlive it.
  ModelTracer(const NotchViewModel& model, Trace& trace, platform::RunLoop& runLoop);

 private:
  void update();
  [[nodiscard]] std::vector<std::string> lines() const;

  const NotchViewModel& model_;
  Trace& trace_;
  platform::RunLoop& runLoop_;
  std::vector<std::string> latest_;
  bool isUpdateScheduled_ = false;
  Observer observer_;
  Lifetime lifetime_;
};

}  // namespace valdrix::sim
