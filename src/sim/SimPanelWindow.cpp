#include "sim/SimPanelWindow.h"

#include <algorithm>
#include <limits>
#include <utility>
#include <variant>

#include "view/HostingView.h"

namespace valdrix::sim {

namespace {

constexpr double frameInterval = 1.0 / 60;

std::string describe(const view::Animation& animation) {
  if (const auto* spring = std::get_if<view::Spring>(&animation))
    return "spring " + formatNumber(spring->response) + ' ' + formatNumber(spring->dampingFraction);
  return "ease " + formatNumber(std::get<view::EaseOut>(animation).duration);
}

std::string yesOrNo(bool value) { return value ? "true" : "false"; }

}  // namespace

SimPanelWindow::SimPanelWindow(Trace& trace, ManualRunLoop& runLoop, SimPointer& pointer,
                               const view::Rect& contentRectangle,
                               const platform::PanelConfiguration& configuration, double scale)
    : trace_(trace),
      runLoop_(runLoop),
      pointer_(pointer),
      frame_(contentRectangle),
      configuration_(configuration),
      scale_(scale),
      trackedRectangle_{0, 0, contentRectangle.width, contentRectangle.height},
      ignoresMouseEvents_(configuration.ignoresMouseEvents),
      latestFrame_(-std::numeric_limits<double>::infinity()) {
  trace_.add("window built " + formatRect(frame_));
}

SimPanelWindow::~SimPanelWindow() {
  orderOut();
  setContentView(nullptr);
}

void SimPanelWindow::setContentView(view::HostingView* content) {
  leaveContent();
  if (content_) {
    content_->setOnNeedsFrame({});
    content_->setOnAnimationStarted({});
  }
  content_ = content;
  frameTimer_.reset();
  if (!content_) return;
  content_->setScale(scale_);
  content_->setOnNeedsFrame([this] { requestFrame(); });
  content_->setOnAnimationStarted(
      [this](const view::Animation& animation) { trace_.add(describe(animation)); });
  requestFrame();
}

void SimPanelWindow::orderFrontRegardless() {
  std::erase(pointer_.windows_, this);
  pointer_.windows_.push_back(this);
  isVisible_ = true;
  trace_.add("window ordered front");
  drawFrame();
}

void SimPanelWindow::orderOut() {
  if (!isVisible_) return;
  isVisible_ = false;
  std::erase(pointer_.windows_, this);
  frameTimer_.reset();
  restingPointer_.reset();
  leaveContent();
  trace_.add("window ordered out");
}

void SimPanelWindow::setIgnoresMouseEvents(bool ignores) {
  if (ignores == ignoresMouseEvents_) return;
  ignoresMouseEvents_ = ignores;
  restingPointer_.reset();
  if (ignores) leaveContent();
  trace_.add("window ignores mouse events " + yesOrNo(ignores));
}

void SimPanelWindow::setTrackedRectangle(const view::Rect& rectangle) {
  if (rectangle == trackedRectangle_) return;
  const auto location = pointer_.mouseLocation();
  const bool hadPointer = watches(location);
  trackedRectangle_ = rectangle;
  restingPointer_.reset();
  if (isVisible_ && watches(location) != hadPointer) restingPointer_ = location;
  trace_.add("window tracks " + formatRect(rectangle));
}

view::Point SimPanelWindow::toContent(view::Point point) const {
  return {point.x - frame_.minX(), frame_.maxY() - point.y};
}

bool SimPanelWindow::watches(view::Point point) const {
  const bool isInside =
      !trackedRectangle_.isEmpty() && trackedRectangle_.contains(toContent(point));
  return isVisible_ && isInside != (restingPointer_ == point);
}

bool SimPanelWindow::takes(view::Point point) const {
  return !ignoresMouseEvents_ && watches(point);
}

void SimPanelWindow::pointerMoved(view::Point point) {
  if (!takes(point)) return leaveContent();
  isPointerInContent_ = true;
  if (!content_) return;
  content_->pointerMoved(toContent(point));
  traceToolTip();
}

void SimPanelWindow::pointerPressed(view::Point point) {
  if (content_) content_->pointerPressed(toContent(point));
}

void SimPanelWindow::pointerReleased(view::Point point) {
  if (content_) content_->pointerReleased(toContent(point));
}

void SimPanelWindow::leaveContent() {
  if (!std::exchange(isPointerInContent_, false) || !content_) return;
  content_->pointerExited();
  traceToolTip();
}

void SimPanelWindow::requestFrame() {
  if (!isVisible_ || frameTimer_) return;
  const double delay = std::max(0.0, latestFrame_ + frameInterval - runLoop_.now());
  frameTimer_ = runLoop_.scheduleFrame(delay, [this] {
    frameTimer_.reset();
    drawFrame();
  });
}

void SimPanelWindow::drawFrame() {
  if (!content_) return;
  latestFrame_ = runLoop_.now();
  const auto frame = content_->prepareFrame(frameInterval);
  if (!frame.damage.isEmpty()) ++framesDrawn_;
  traceToolTip();
}

void SimPanelWindow::traceToolTip() {
  if (content_->toolTip() == toolTip_) return;
  toolTip_ = content_->toolTip();
  trace_.add(toolTip_.empty() ? "tooltip none" : "tooltip " + toolTip_);
}

}  // namespace valdrix::sim
