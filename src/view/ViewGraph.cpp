#include "view/ViewGraph.h"

#include <algorithm>
#include <utility>

#include "view/ComponentNode.h"
#include "view/InteractionNodes.h"

namespace valdrix::view {

namespace {

/// Bodies and actions that keep changing what they read are cut off after this many rounds, so that
/// a mistake in a view shows as a wrong picture and not as a hang.
constexpr int maxRounds = 64;
constexpr int maxUpdates = 4096;

}  // namespace

ViewGraph::ViewGraph(HostingView::Services services) : services_(std::move(services)) {}

ViewGraph::~ViewGraph() {
  onNeedsFrame = nullptr;
  root_.reset();
  runActions();
}

void ViewGraph::setRoot(const View& view) {
  reconcile(root_, view, *this, nullptr);
  flush();
  requestFrame();
}

void ViewGraph::requestFrame() {
  if (needsFrame_) return;
  needsFrame_ = true;
  if (onNeedsFrame) onNeedsFrame();
}

void ViewGraph::componentDidChange(ComponentNodeBase& component) {
  if (std::find(dirty_.begin(), dirty_.end(), &component) == dirty_.end())
    dirty_.push_back(&component);
  requestFrame();
}

void ViewGraph::componentGone(ComponentNodeBase& component) { std::erase(dirty_, &component); }

void ViewGraph::flush() {
  for (int round = 0; round < maxRounds && (!dirty_.empty() || !actions_.empty()); ++round) {
    updateComponents();
    runActions();
  }
}

void ViewGraph::updateComponents() {
  if (isUpdating_) return;
  isUpdating_ = true;
  hasStartedAnimation_ = false;
  for (int count = 0; count < maxUpdates && !dirty_.empty(); ++count) {
    // Outer components first: they may replace or remove inner ones.
    const auto next = std::min_element(dirty_.begin(), dirty_.end(),
                                       [](auto* a, auto* b) { return a->depth() < b->depth(); });
    (*next)->evaluate();
  }
  isUpdating_ = false;
  const auto& animation = Transaction::current().animation;
  if (hasStartedAnimation_ && animation && onAnimationStarted) onAnimationStarted(*animation);
}

void ViewGraph::runActions() {
  for (const auto& action : std::exchange(actions_, {})) action();
}

void ViewGraph::setScale(double scale) {
  if (scale == scale_) return;
  scale_ = scale;
  requestFrame();
}

HostingView::Frame ViewGraph::prepareFrame(double lookAhead) {
  flush();
  frameTime_ = now() + lookAhead;
  ++frameNumber_;
  isMoving_ = root_->advance(true);
  if (!dirty_.empty()) {
    // A timeline came to be seen and has new content.
    flush();
    isMoving_ = root_->advance(true);
  }
  const bool isSignMoving = sign_.advance(frameTime_);
  placeRoot();
  std::swap(list_, formerList_);
  list_.clear();
  root_->draw(list_, DrawState{});
  sign_.draw(list_, {0, 0, frame.width, frame.height});
  dropIdleClips(list_);
  needsFrame_ = false;
  if (pointer_) updateHover();
  const bool isAnimating = isMoving_ || isSignMoving;
  if (isAnimating || !dirty_.empty() || !actions_.empty()) requestFrame();
  return {.damage = difference(formerList_, list_), .isAnimating = isAnimating};
}

void ViewGraph::placeRoot() {
  const auto offer = ProposedSize::of(frame.size());
  root_->place(aligned(root_->sizeThatFits(offer), frame, Alignment::center), offer);
}

void ViewGraph::prepareHidden() {
  flush();
  preparesHidden_ = true;
  placeRoot();
  preparesHidden_ = false;
}

void ViewGraph::pointerMoved(Point point) {
  pointer_ = point;
  flush();
  updateHover();
}

void ViewGraph::pointerExited() {
  pointer_.reset();
  pressed_ = nullptr;
  updateHover();
}

void ViewGraph::pointerPressed() {
  pressed_ = button_;
  sign_.dismiss();
}

void ViewGraph::pointerReleased() {
  ButtonNode* pressed = std::exchange(pressed_, nullptr);
  if (pressed && pressed == button_) pressed->click();
}

void ViewGraph::updateHover() {
  HitPath path;
  if (pointer_ && root_) root_->hitTest(*pointer_, path);
  button_ = path.button;
  toolTip_ = std::move(path.toolTip);
  sign_.update(toolTip_, pointer_);
  const auto former = std::exchange(hovered_, path.hovers);
  // Actions run after both lists stand, since they may change the tree.
  for (auto* hover : former)
    if (std::find(hovered_.begin(), hovered_.end(), hover) == hovered_.end())
      hover->setInside(false);
  for (auto* hover : hovered_)
    if (std::find(former.begin(), former.end(), hover) == former.end()) hover->setInside(true);
  runActions();
  if (!actions_.empty()) requestFrame();
}

void ViewGraph::hoverGone(const HoverNode& hover) { std::erase(hovered_, &hover); }

void ViewGraph::buttonGone(const ButtonNode& button) {
  if (button_ == &button) button_ = nullptr;
  if (pressed_ == &button) pressed_ = nullptr;
}

}  // namespace valdrix::view
