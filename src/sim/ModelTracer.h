#pragma once

#include <string>
#include <vector>

#include "calendar/CalendarService.h"
#include "notch/NotchViewModel.h"
#include "observation/Lifetime.h"
#include "observation/Observer.h"
#include "platform/RunLoop.h"
#include "sim/Trace.h"

namespace valdrix::sim {

/// Traces what the notch shows and what the calendar service publishes: each turn of the loop that
/// changed it leaves a line for every value that is different afterwards.
class ModelTracer {
 public:
  /// Traces changes from now on, and at once what the calendar service has found. All must outlive
  /// it.
  ModelTracer(const NotchViewModel& model, const CalendarService& calendarService, Trace& trace,
              platform::RunLoop& runLoop);

 private:
  void scheduleUpdate();
  void update();
  [[nodiscard]] std::vector<std::string> lines() const;

  const NotchViewModel& model_;
  const CalendarService& calendarService_;
  Trace& trace_;
  platform::RunLoop& runLoop_;
  std::vector<std::string> latest_;
  bool isUpdateScheduled_ = false;
  Observer observer_;
  Lifetime lifetime_;
};

}  // namespace valdrix::sim
