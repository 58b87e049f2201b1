#include "view/Node.h"

#include <algorithm>
#include <cmath>

#include "view/View.h"
#include "view/ViewGraph.h"

namespace valdrix::view {

namespace {

/// Differences below this, in points, are what is left of rounding.
constexpr double roundingError = 1e-6;

}  // namespace

Node::Node(ViewGraph& graph, Node* parent)
    : graph_(graph),
      parent_(parent),
      serial_(graph.nextSerial()),
      depth_(parent ? parent->depth() + 1 : 0) {}

Size Node::sizeThatFits(const ProposedSize& proposal) {
  const std::size_t known = std::min(fitCount_, fits_.size());
  for (std::size_t i = 0; i < known; ++i)
    if (fits_[i].proposal == proposal) return fits_[i].size;
  const Size size = measure(proposal);
  fits_[fitCount_++ % fits_.size()] = {proposal, size};
  return size;
}

void Node::sizesChanged() {
  for (Node* node = this; node; node = node->parent_) node->forgetSizes();
}

Axis Node::stackAxis() const { return parent_ ? parent_->stackAxis() : Axis::vertical; }

Node::Drawing Node::noteDrawing() {
  const auto frame = graph_.frameNumber();
  const bool isNew = std::exchange(drawnFrame_, frame) + 1 != frame;
  return {std::exchange(formerBounds_, bounds_), isNew || !graph_.isMoving()};
}

double Node::put(double coordinate, double former, bool rests) const {
  if (!rests && std::abs(coordinate - former) >= roundingError) return coordinate;
  return std::round(coordinate * graph_.scale()) / graph_.scale();
}

Rect Node::drawnBounds() {
  const auto [former, rests] = noteDrawing();
  const double left = put(bounds_.minX(), former.minX(), rests);
  const double top = put(bounds_.minY(), former.minY(), rests);
  return {left, top, put(bounds_.maxX(), former.maxX(), rests) - left,
          put(bounds_.maxY(), former.maxY(), rests) - top};
}

Point Node::drawnCenter() {
  const auto [former, rests] = noteDrawing();
  return {put(bounds_.midX(), former.midX(), rests), put(bounds_.midY(), former.midY(), rests)};
}

DisplayItem Node::newItem(DisplayItem::Kind kind, const Color& color,
                          const DrawState& state) const {
  DisplayItem item;
  item.owner = serial_;
  item.kind = kind;
  item.color = color.withOpacity(state.opacity);
  item.clips = state.clips;
  return item;
}

void reconcile(std::unique_ptr<Node>& node, const View& view, ViewGraph& graph, Node* parent) {
  const auto& element = view.element();
  if (node && node->element_ == element) return;
  const std::string* identity = element->identity();
  const bool isSame =
      node && node->accepts(*element) && (!identity || node->identity_ == *identity);
  if (!isSame) {
    node = element->makeNode(graph, parent);
    if (identity) node->identity_ = *identity;
  }
  node->element_ = element;
  node->update(*element);
}

void WrapperNode::placeChild(const Rect& bounds, const ProposedSize& proposal,
                             Alignment alignment) {
  child_->place(aligned(child_->sizeThatFits(proposal), bounds, alignment), proposal);
}

void WrapperNode::updateChild(const View& view) { reconcile(child_, view, graph(), this); }

void ContainerNode::updateChildren(const std::vector<View>& views) {
  auto former = std::exchange(children_, {});
  children_.reserve(views.size());
  for (std::size_t i = 0; i < views.size(); ++i) {
    const std::string* identity = views[i].element()->identity();
    std::unique_ptr<Node> node;
    if (identity) {
      const auto match = std::find_if(former.begin(), former.end(), [&](const auto& candidate) {
        return candidate && candidate->identity() == *identity;
      });
      if (match != former.end()) node = std::move(*match);
    } else if (i < former.size() && former[i] && former[i]->identity().empty()) {
      node = std::move(former[i]);
    }
    reconcile(node, views[i], graph(), this);
    children_.push_back(std::move(node));
  }
}

void ContainerNode::draw(DisplayList& list, const DrawState& state) {
  for (const auto& child : children_) child->draw(list, state);
}

bool ContainerNode::advance(bool isVisible) {
  bool isMoving = false;
  for (const auto& child : children_) isMoving = child->advance(isVisible) || isMoving;
  return isMoving;
}

bool ContainerNode::hitTest(Point point, HitPath& path) {
  return std::any_of(children_.rbegin(), children_.rend(),
                     [&](const auto& child) { return child->hitTest(point, path); });
}

Rect aligned(Size size, const Rect& bounds, Alignment alignment) {
  const double freeX = bounds.width - size.width;
  const double freeY = bounds.height - size.height;
  double x = bounds.x;
  double y = bounds.y;
  if (alignment.horizontal == HorizontalAlignment::center) x += freeX / 2;
  if (alignment.horizontal == HorizontalAlignment::trailing) x += freeX;
  if (alignment.vertical == VerticalAlignment::center) y += freeY / 2;
  if (alignment.vertical == VerticalAlignment::bottom) y += freeY;
  return {x, y, size.width, size.height};
}

}  // namespace valdrix::view
