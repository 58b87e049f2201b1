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

void ViewGraph::componentWillChange() {
  // What was changed in another transaction before is taken over with that one's animation, while
  // the values of this one are still the old ones.
  if (pending_ && !(*pending_ == Transaction::current())) flush();
}

void ViewGraph::componentDidChange(ComponentNodeBase& component) {
  pending_ = Transaction::current();
  if (std::find(dirty_.begin(), dirty_.end(), &component) == dirty_.end())
    dirty_.push_back(&component);
  requestFrame();
}

void ViewGraph::componentGone(ComponentNodeBase& component) { std::erase(dirty_, &component); }

void ViewGraph::flush() {
  if (isFlushing_) return;
  isFlushing_ = true;
  for (int round = 0; round < maxRounds && (!dirty_.empty() || !actions_.empty()); ++round) {
    updateDirtyComponents();
    isFlushing_ = false;
    runActions();
    isFlushing_ = true;
  }
  isFlushing_ = false;
}

void ViewGraph::updateDirtyComponents() {
  transaction_ = std::exchange(pending_, std::nullopt).value_or(Transaction{});
  hasStartedAnimation_ = false;
  while (!dirty_.empty()) {
    // Outer components first: they may replace or remove inner ones.
    const auto next = std::min_element(dirty_.begin(), dirty_.end(),
                                       [](auto* a, auto* b) { return a->depth() < b->depth(); });
    ComponentNodeBase* component = *next;
    dirty_.erase(next);
    component->evaluate();
  }
  const Transaction done = std::exchange(transaction_, Transaction{});
  if (hasStartedAnimation_ && done.animation && onAnimationStarted)
    onAnimationStarted(*done.animation);
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
  if (root_) {
    root_->setVisible(true);
    flush();
  }
  DisplayList list;
  list.reserve(list_.size());
  isMoving_ = root_ && root_->isMoving();
  if (root_) {
    root_->place(frame);
    root_->draw(list, DrawState{});
  }
  HostingView::Frame result{.damage = difference(list_, list), .isAnimating = isMoving_};
  list_ = std::move(list);
  needsFrame_ = false;
  if (pointer_) updateHover();
  if (isMoving_ || !dirty_.empty()) requestFrame();
  return result;
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

void ViewGraph::pointerPressed() { pressed_ = button_; }

void ViewGraph::pointerReleased() {
  ButtonNode* pressed = std::exchange(pressed_, nullptr);
  if (pressed && pressed == button_) pressed->click();
}

void ViewGraph::updateHover() {
  HitPath path;
  if (pointer_ && root_) root_->hitTest(*pointer_, path);
  button_ = path.button;
  toolTip_ = std::move(path.toolTip);
  showsLink_ = path.isLink;
  const auto former = std::exchange(hovered_, path.hovers);
  // Actions run after both lists stand, since they may change the tree.
  for (auto* hover : former)
    if (std::find(hovered_.begin(), hovered_.end(), hover) == hovered_.end())
      hover->setInside(false);
  for (auto* hover : hovered_)
    if (std::find(former.begin(), former.end(), hover) == former.end()) hover->setInside(true);
  runActions();
}

void ViewGraph::hoverGone(const HoverNode& hover) { std::erase(hovered_, &hover); }

void ViewGraph::buttonGone(const ButtonNode& button) {
  if (button_ == &button) button_ = nullptr;
  if (pressed_ == &button) pressed_ = nullptr;
}

}  // namespace valdrix::view
