#pragma once

#include <memory>

#include "platform/PanelWindow.h"
#include "view/Geometry.h"
#include "view/HostingView.h"

namespace valdrix {

/// The panel's window: borderless, transparent, above bars and fullscreen windows, on every
/// workspace, never focused, and click-through until the pointer is over the panel.
class NotchWindow {
 public:
  /// A hidden window over `contentRectangle`, in screen coordinates.
  NotchWindow(platform::PanelWindows& windows, const view::Rect& contentRectangle);
  ~NotchWindow();
  NotchWindow(const NotchWindow&) = delete;
  NotchWindow& operator=(const NotchWindow&) = delete;

  /// Takes `content` as what the window shows.
  void setContentView(std::unique_ptr<view::HostingView> content);

  /// See `HostingView::prepareHiddenLayers`.
  void prepareHiddenLayers() {
    if (content_) content_->prepareHiddenLayers();
  }

  void orderFrontRegardless() { panel_->orderFrontRegardless(); }
  void orderOut() { panel_->orderOut(); }
  [[nodiscard]] bool ignoresMouseEvents() const { return panel_->ignoresMouseEvents(); }
  void setIgnoresMouseEvents(bool ignores) { panel_->setIgnoresMouseEvents(ignores); }
  /// `rectangle` is in screen coordinates.
  void setTrackedRectangle(const view::Rect& rectangle);

 private:
  view::Rect contentRectangle_;
  std::unique_ptr<view::HostingView> content_;
  std::unique_ptr<platform::PanelWindow> panel_;
};

}  // namespace valdrix
