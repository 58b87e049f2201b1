#include "sim/SimPanelWindows.h"

namespace valdrix::sim {

std::unique_ptr<platform::PanelWindow> SimPanelWindows::makeWindow(
    const view::Rect& contentRectangle, const platform::PanelConfiguration& configuration) {
  return std::make_unique<SimPanelWindow>(trace_, runLoop_, pointer_, contentRectangle,
                                          configuration, scale_);
}

}  // namespace valdrix::sim
