#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
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

  /// Moves everything in it on to the graph's frame time. `isVisible`: whether it can be seen in
  /// that frame. Whether something in it is still on its way.
  virtual bool advance(bool isVisible) = 0;
  /// The size that it takes when it is offered `proposal`.
  [[nodiscard]] Size sizeThatFits(const ProposedSize& proposal);
  /// Puts the node, which was offered `proposal`, at `bounds` and its children inside.
  virtual void place(const Rect& bounds, const ProposedSize& proposal) = 0;
  virtual void draw(DisplayList& list, const DrawState& state) = 0;
  /// Whether it only takes the room that its siblings leave.
  [[nodiscard]] virtual bool isSpacer() const { return false; }
  /// Whether it can be seen, or is on its way there or back. One that can not is placed only when
  /// the graph prepares hidden layers, so that what was never seen costs no layout.
  [[nodiscard]] virtual bool isShown() const { return true; }
  /// The axis of the nearest stack around.
  [[nodiscard]] virtual Axis stackAxis() const;
  /// Whether `point` hits it; what reacts to the pointer is added to `path`.
  virtual bool hitTest(Point point, HitPath& path) = 0;

  [[nodiscard]] const Rect& bounds() const { return bounds_; }
  [[nodiscard]] int depth() const { return depth_; }
  [[nodiscard]] const std::string& identity() const { return identity_; }

 protected:
  [[nodiscard]] ViewGraph& graph() const { return graph_; }
  /// Works `sizeThatFits` out, which keeps the result until `forgetSizes`.
  [[nodiscard]] virtual Size measure(const ProposedSize& proposal) = 0;
  void forgetSizes() { fitCount_ = 0; }
  /// Measures it and everything around it anew: it changed without a new description for its
  /// parent.
  void sizesChanged();
  /// `bounds_` as they are drawn: edges that rest, or have only come to be seen, are put on device
  /// pixels, moving ones are not, so that they do not jerk. Once a frame.
  [[nodiscard]] Rect drawnBounds();
  /// The middle of `bounds_` likewise, for what is drawn around it and has no edges of its own:
  /// beside an even number of pixels it then has the same axis.
  [[nodiscard]] Point drawnCenter();
  /// An item of this node as `state` has it drawn, still without its content.
  [[nodiscard]] DisplayItem newItem(DisplayItem::Kind kind, const Color& color,
                                    const DrawState& state) const;

  Rect bounds_;

 private:
  friend void reconcile(std::unique_ptr<Node>& node, const View& view, ViewGraph& graph,
                        Node* parent);
  struct Fit {
    ProposedSize proposal;
    Size size;
  };

  struct Drawing {
    Rect former;  ///< where it was drawn before
    bool rests;   ///< as a whole; else it depends on the edge
  };
  Drawing noteDrawing();
  [[nodiscard]] double put(double coordinate, double former, bool rests) const;

  ViewGraph& graph_;
  Node* parent_;
  std::shared_ptr<const Element> element_;
  std::uint64_t serial_;
  int depth_;
  std::string identity_;
  Rect formerBounds_;
  std::uint64_t drawnFrame_ = 0;
  // A stack asks for the least and the largest size and then for one or two between.
  std::array<Fit, 4> fits_;
  std::size_t fitCount_ = 0;
};

/// A node without children, that never moves and is all under the pointer unless it says otherwise.
class LeafNode : public Node {
 public:
  using Node::Node;
  bool advance(bool isVisible) override {
    wasVisible_ = isVisible;
    return false;
  }
  void place(const Rect& bounds, const ProposedSize&) override { bounds_ = bounds; }
  bool hitTest(Point point, HitPath&) override { return bounds_.contains(point); }

 protected:
  /// Whether the latest frame could show it.
  [[nodiscard]] bool wasVisible() const { return wasVisible_; }

 private:
  bool wasVisible_ = false;
};

/// A node around exactly one child, transparent in everything that it does not override.
class WrapperNode : public Node {
 public:
  using Node::Node;
  bool advance(bool isVisible) override { return child_->advance(isVisible); }
  void place(const Rect& bounds, const ProposedSize& proposal) override {
    bounds_ = bounds;
    child_->place(bounds, proposal);
  }
  void draw(DisplayList& list, const DrawState& state) override { child_->draw(list, state); }
  [[nodiscard]] bool isSpacer() const override { return child_->isSpacer(); }
  [[nodiscard]] bool isShown() const override { return child_->isShown(); }
  bool hitTest(Point point, HitPath& path) override { return child_->hitTest(point, path); }

 protected:
  [[nodiscard]] Size measure(const ProposedSize& proposal) override {
    return child_->sizeThatFits(proposal);
  }
  /// Places the child where `alignment` puts it in `bounds` when it is offered `proposal`.
  void placeChild(const Rect& bounds, const ProposedSize& proposal, Alignment alignment);
  void updateChild(const View& view);

  std::unique_ptr<Node> child_;
};

/// A node around any number of children, drawn in order.
class ContainerNode : public Node {
 public:
  using Node::Node;
  bool advance(bool isVisible) override;
  void draw(DisplayList& list, const DrawState& state) override;
  bool hitTest(Point point, HitPath& path) override;

 protected:
  /// Matches the children with `views`: by identity where a view has one, else by position.
  void updateChildren(const std::vector<View>& views);

  std::vector<std::unique_ptr<Node>> children_;
};

/// Shows `view` in `node`: updates it when it is of the right kind, else replaces it. A node that
/// shows that very description already is left alone.
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
    this->forgetSizes();
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
