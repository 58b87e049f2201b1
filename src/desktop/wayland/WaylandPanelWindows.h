#pragma once

#include "desktop/wayland/WaylandPanelWindow.h"
#include "platform/PanelWindow.h"

namespace valdrix::desktop {

/// Makes panels under a Wayland compositor.
class WaylandPanelWindows final : public platform::PanelWindows {
 public:
  /// The services must outlive it and its windows.
  explicit WaylandPanelWindows(const WaylandPanelServices& services) : services_(services) {}

  [[nodiscard]] std::unique_ptr<platform::PanelWindow> makeWindow(
      const view::Rect& contentRectangle,
      const platform::PanelConfiguration& configuration) override {
    return std::make_unique<WaylandPanelWindow>(services_, contentRectangle, configuration);
  }

 private:
  WaylandPanelServices services_;
};

}  // namespace valdrix::desktop
