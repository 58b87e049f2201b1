#pragma once

#include <memory>

#include "platform/PanelWindow.h"
#include "sim/SimPanelWindow.h"

namespace valdrix::sim {

/// Makes simulated panels.
class SimPanelWindows final : public platform::PanelWindows {
 public:
  /// All must outlive it and its windows.
  SimPanelWindows(Trace& trace, ManualRunLoop& runLoop, SimPointer& pointer)
      : trace_(trace), runLoop_(runLoop), pointer_(pointer) {}

  [[nodiscard]] std::unique_ptr<platform::PanelWindow> makeWindow(
      const view::Rect& contentRectangle,
      const platform::PanelConfiguration& configuration) override;

  /// Device pixels per point, above 0, of the windows that are made from now on.
  void setScale(double scale) { scale_ = scale; }

  /// The shown window in front of all others; null without one.
  [[nodiscard]] SimPanelWindow* frontWindow() const { return pointer_.frontWindow(); }

 private:
  Trace& trace_;
  ManualRunLoop& runLoop_;
  SimPointer& pointer_;
  double scale_ = 1;
};

}  // namespace valdrix::sim
