#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "view/DisplayList.h"
#include "view/Geometry.h"

namespace valdrix::view {

class ButtonNode;
class HoverNode;
class Node;
class View;
class ViewGraph;

/// The description behind a `View`. Immutable.
class Element {
 public:
  virtual ~Element() = default;
  /// A node for this description, not yet updated with it.
  [[nodiscard]] virtual std::unique_ptr<Node> makeNode(ViewGraph& graph, Node* parent) const = 0;
  /// What tells it from its siblings, or null.
  [[nodiscard]] virtual const std::string* identity() const { return nullptr; }
};

enum class Axis { horizontal, vertical };

/// What the pointer is over, from the innermost node outwards.
struct HitPath {
  std::vector<HoverNode*> hovers;
  ButtonNode* button = nullptr;
  std::string toolTip;
  bool isLink = false;
};

/// What drawing inherits from the nodes around.
struct DrawState {
  double opacity = 1;
  std::vector<std::shared_ptr<const Path>> clips;
};

/// One node of the tree that a hosting view keeps between frames. Coordinates are those of the
/// hosting view.
class Node {
 public:
  Node(ViewGraph& graph, Node* parent);
  virtual ~Node() = default;
  Node(const Node&) = delete;
  Node& operator=(const Node&) = delete;

  /// Whether `element` is of the kind that this node shows.
  [[nodiscard]] virtual bool accepts(const Element& element) const = 0;
  /// Takes over a new description, under the graph's transaction.
  virtual void update(const Element& element) = 0;

  [[nodiscard]] virtual Size sizeThatFits(const ProposedSize& proposal) = 0;
  /// Puts the node at `bounds` and its children inside.
  virtual void place(const Rect& bounds) { bounds_ = bounds; }
  virtual void draw(DisplayList& list, const DrawState& state) = 0;
  /// Whether anything in it that can be seen is on its way at the frame's time.
  [[nodiscard]] virtual bool isMoving() const = 0;
  /// Tells timelines inside whether they can be seen.
  virtual void setVisible(bool isVisible) = 0;
  /// Tells a spacer along which axis its stack runs.
  virtual void setStackAxis(Axis) {}
  /// Whether `point` hits it; what reacts to the pointer is added to `path`.
  virtual bool hitTest(Point point, HitPath& path) = 0;

  [[nodiscard]] const Rect& bounds() const { return bounds_; }
  [[nodiscard]] int depth() const { return depth_; }
  [[nodiscard]] const std::string& identity() const { return identity_; }
  void setIdentity(const std::string* identity) { identity_ = identity ? *identity : ""; }

 protected:
  [[nodiscard]] ViewGraph& graph() const { return graph_; }
  /// An item of this node as `state` has it drawn, still without its content.
  [[nodiscard]] DisplayItem newItem(DisplayItem::Kind kind, const Color& color,
                                    const DrawState& state) const;

  Rect bounds_;

 private:
  ViewGraph& graph_;
  std::uint64_t serial_;
  int depth_;
  std::string identity_;
};

/// A node without children: never moving and not under the pointer unless it says so.
class LeafNode : public Node {
 public:
  using Node::Node;
  [[nodiscard]] bool isMoving() const override { return false; }
  void setVisible(bool) override {}
  bool hitTest(Point point, HitPath&) override { return bounds_.contains(point); }
};

/// A node around exactly one child, transparent in everything that it does not override.
class WrapperNode : public Node {
 public:
  using Node::Node;
  [[nodiscard]] Size sizeThatFits(const ProposedSize& proposal) override {
    return child_->sizeThatFits(proposal);
  }
  void place(const Rect& bounds) override {
    bounds_ = bounds;
    child_->place(bounds);
  }
  void draw(DisplayList& list, const DrawState& state) override { child_->draw(list, state); }
  [[nodiscard]] bool isMoving() const override { return child_->isMoving(); }
  void setVisible(bool isVisible) override { child_->setVisible(isVisible); }
  void setStackAxis(Axis axis) override { child_->setStackAxis(axis); }
  bool hitTest(Point point, HitPath& path) override { return child_->hitTest(point, path); }

 protected:
  void updateChild(const View& view);

  std::unique_ptr<Node> child_;
};

/// A node around any number of children, drawn in order.
class ContainerNode : public Node {
 public:
  using Node::Node;
  void draw(DisplayList& list, const DrawState& state) override;
  [[nodiscard]] bool isMoving() const override;
  void setVisible(bool isVisible) override;
  bool hitTest(Point point, HitPath& path) override;

 protected:
  /// Matches the children with `views`: by identity where a view has one, else by position.
  void updateChildren(const std::vector<View>& views);

  std::vector<std::unique_ptr<Node>> children_;
};

/// Shows `view` in `node`: updates it when it is of the right kind, else replaces it.
void reconcile(std::unique_ptr<Node>& node, const View& view, ViewGraph& graph, Node* parent);

/// Ties a node class to its element class `E`; the node has `void apply(const E&)`.
template <class Derived, class Base, class E>
class NodeFor : public Base {
 public:
  using Base::Base;
  [[nodiscard]] bool accepts(const Element& element) const final {
    return dynamic_cast<const E*>(&element) != nullptr;
  }
  void update(const Element& element) final {
    static_cast<Derived*>(this)->apply(static_cast<const E&>(element));
  }
};

/// An element whose nodes are of class `N`.
template <class N>
class ElementFor : public Element {
 public:
  [[nodiscard]] std::unique_ptr<Node> makeNode(ViewGraph& graph, Node* parent) const override {
    return std::make_unique<N>(graph, parent);
  }
};

/// Where a child of `size` stands in `bounds`.
[[nodiscard]] Rect aligned(Size size, const Rect& bounds, Alignment alignment);

}  // namespace valdrix::view
