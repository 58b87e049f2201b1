#pragma once

#include "desktop/x11/X11PanelWindow.h"
#include "platform/PanelWindow.h"

namespace valdrix::desktop {

/// Makes panels on an X server.
class X11PanelWindows final : public platform::PanelWindows {
 public:
  /// The services must outlive it and its windows.
  explicit X11PanelWindows(const X11PanelServices& services) : services_(services) {}

  [[nodiscard]] std::unique_ptr<platform::PanelWindow> makeWindow(
      const view::Rect& contentRectangle,
      const platform::PanelConfiguration& configuration) override {
    return std::make_unique<X11PanelWindow>(services_, contentRectangle, configuration);
  }

 private:
  X11PanelServices services_;
};

}  // namespace valdrix::desktop
