#include "view/Node.h"

#include <algorithm>

#include "view/View.h"
#include "view/ViewGraph.h"

namespace valdrix::view {

Node::Node(ViewGraph& graph, Node* parent)
    : graph_(graph), serial_(graph.nextSerial()), depth_(parent ? parent->depth() + 1 : 0) {}

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
  const Element& element = view.element();
  if (!node || !node->accepts(element)) {
    node = element.makeNode(graph, parent);
    node->setIdentity(element.identity());
  }
  node->update(element);
}

void WrapperNode::updateChild(const View& view) { reconcile(child_, view, graph(), this); }

void ContainerNode::updateChildren(const std::vector<View>& views) {
  auto former = std::exchange(children_, {});
  children_.reserve(views.size());
  for (std::size_t i = 0; i < views.size(); ++i) {
    const std::string* identity = views[i].element().identity();
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

bool ContainerNode::isMoving() const {
  return std::any_of(children_.begin(), children_.end(),
                     [](const auto& child) { return child->isMoving(); });
}

void ContainerNode::setVisible(bool isVisible) {
  for (const auto& child : children_) child->setVisible(isVisible);
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
