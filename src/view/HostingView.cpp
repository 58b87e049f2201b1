#include "view/HostingView.h"

#include <utility>

#include "view/ViewGraph.h"

namespace valdrix::view {

HostingView::HostingView(const View& content, Services services)
    : graph_(std::make_unique<ViewGraph>(std::move(services))) {
  graph_->setRoot(content);
}

HostingView::~HostingView() = default;

void HostingView::setFrame(const Rect& frame) {
  if (graph_->frame == frame) return;
  graph_->frame = frame;
  graph_->requestFrame();
}

const Rect& HostingView::frame() const { return graph_->frame; }

void HostingView::setAutoresizingMask(std::uint32_t mask) { graph_->autoresizingMask = mask; }

void HostingView::windowResized(Size size) {
  Rect frame = graph_->frame;
  if (graph_->autoresizingMask & widthSizable) frame.width = size.width - frame.x;
  if (graph_->autoresizingMask & heightSizable) frame.height = size.height - frame.y;
  setFrame(frame);
}

void HostingView::setScale(double scale) { graph_->setScale(scale); }

void HostingView::setOnNeedsFrame(std::function<void()> onNeedsFrame) {
  graph_->onNeedsFrame = std::move(onNeedsFrame);
  if (graph_->needsFrame() && graph_->onNeedsFrame) graph_->onNeedsFrame();
}

bool HostingView::needsFrame() const { return graph_->needsFrame(); }

void HostingView::setOnAnimationStarted(std::function<void(const Animation&)> onAnimationStarted) {
  graph_->onAnimationStarted = std::move(onAnimationStarted);
}

HostingView::Frame HostingView::prepareFrame(double lookAhead) {
  return graph_->prepareFrame(lookAhead);
}

void HostingView::prepareHiddenLayers() { graph_->prepareHidden(); }

void HostingView::draw(Canvas& canvas, const Rect& dirty) const {
  view::draw(graph_->displayList(), canvas, dirty);
}

const DisplayList& HostingView::displayList() const { return graph_->displayList(); }

void HostingView::pointerMoved(Point point) { graph_->pointerMoved(point); }
void HostingView::pointerExited() { graph_->pointerExited(); }

void HostingView::pointerPressed(Point point) {
  graph_->pointerMoved(point);
  graph_->pointerPressed();
}

void HostingView::pointerReleased(Point point) {
  graph_->pointerMoved(point);
  graph_->pointerReleased();
}

const std::string& HostingView::toolTip() const { return graph_->toolTip(); }

}  // namespace valdrix::view
