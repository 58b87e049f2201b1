#include "notch/NotchWindow.h"

#include <utility>

namespace valdrix {

namespace {

constexpr platform::PanelConfiguration configuration{
    .isBorderless = true,
    // One above the desktop's bars.
    .level = 26,
    .isOpaque = false,
    .hasShadow = false,
    .canJoinAllSpaces = true,
    .isStationary = true,
    .isFullScreenAuxiliary = true,
    .ignoresMouseEvents = true,
    .acceptsMouseMovedEvents = true,
    .isMovable = false,
    .isMovableByBackground = false,
    .hidesOnDeactivate = false,
    .canBecomeKey = false,
    .canBecomeMain = false,
};

}  // namespace

NotchWindow::NotchWindow(platform::PanelWindows& windows, const view::Rect& contentRectangle)
    : contentRectangle_(contentRectangle),
      panel_(windows.makeWindow(contentRectangle, configuration)) {}

NotchWindow::~NotchWindow() { panel_->setContentView(nullptr); }

void NotchWindow::setContentView(std::unique_ptr<view::HostingView> content) {
  panel_->setContentView(content.get());
  content_ = std::move(content);
}

void NotchWindow::setTrackedRectangle(const view::Rect& rectangle) {
  panel_->setTrackedRectangle({rectangle.x - contentRectangle_.x,
                               contentRectangle_.maxY() - rectangle.maxY(), rectangle.width,
                               rectangle.height});
}

}  // namespace valdrix
