#pragma once

#include "platform/Cursor.h"
#include "sim/Trace.h"

namespace valdrix::sim {

/// The simulated pointer shape.
class SimCursor final : public platform::Cursor {
 public:
  explicit SimCursor(Trace& trace) : trace_(trace) {}

  void pushPointingHand() override {
    if (++pushes_ == 1) trace_.add("cursor pointing hand");
  }
  void pop() override {
    if (pushes_ == 0) return;
    if (--pushes_ == 0) trace_.add("cursor arrow");
  }
  [[nodiscard]] bool isPointingHand() const { return pushes_ > 0; }

 private:
  Trace& trace_;
  int pushes_ = 0;
};

}  // namespace valdrix::sim
