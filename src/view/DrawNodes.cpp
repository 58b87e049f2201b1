#include <algorithm>
#include <optional>
#include <utility>

#include "view/Animated.h"
#include "view/View.h"
#include "view/ViewGraph.h"

namespace valdrix::view {

namespace {

/// Less than half of one of the 255 steps of a channel.
constexpr double opacityTolerance = 0.0015;
/// Of what shapes animate, which is about points.
constexpr double shapeTolerance = 0.05;

/// A shape whose animatable data moves as its changes say.
class MovingShape {
 public:
  /// Whether a movement started.
  bool take(const Shape& shape, const ViewGraph& graph) {
    shape_ = shape;
    return data_.set({shape.animatableData()}, Transaction::current(), graph.now());
  }
  void advance(double time) { data_.advance(time); }
  [[nodiscard]] bool isMoving() const { return data_.isMoving(); }
  [[nodiscard]] Path path(const Rect& rect) const { return shape_->path(rect, data_.values()[0]); }

 private:
  std::optional<Shape> shape_;
  Animated<1> data_{shapeTolerance};
};

class ShapeNode;

class ShapeElement final : public ElementFor<ShapeNode> {
 public:
  ShapeElement(Shape drawnShape, const Color& drawnColor, double width)
      : shape(std::move(drawnShape)), color(drawnColor), lineWidth(width) {}
  Shape shape;
  Color color;
  /// 0 fills the shape.
  double lineWidth;
};

class ShapeNode final : public NodeFor<ShapeNode, LeafNode, ShapeElement> {
 public:
  using NodeFor::NodeFor;

  void apply(const ShapeElement& element) {
    const auto& [red, green, blue, alpha] = element.color;
    const bool hasNewColor =
        color_.set({red, green, blue, alpha}, Transaction::current(), graph().now());
    const bool hasNewData = shape_.take(element.shape, graph());
    if (hasNewColor || hasNewData) graph().noteAnimationStarted();
    lineWidth_ = element.lineWidth;
  }

  bool advance(bool isVisible) override {
    color_.advance(graph().frameTime());
    shape_.advance(graph().frameTime());
    LeafNode::advance(isVisible);
    return color_.isMoving() || (color_.target()[3] > 0 && shape_.isMoving());
  }

  void draw(DisplayList& list, const DrawState& state) override {
    const Rect rect = drawnBounds();
    const auto [red, green, blue, alpha] = color_.values();
    if (alpha <= 0) return;
    const Color color{clamped(red), clamped(green), clamped(blue), clamped(alpha)};
    const auto kind = lineWidth_ > 0 ? DisplayItem::Kind::stroke : DisplayItem::Kind::fill;
    DisplayItem item = newItem(kind, color, state);
    item.path = shape_.path(rect);
    item.lineWidth = lineWidth_;
    item.bounds = item.path.bounds().outset(lineWidth_ / 2);
    list.push_back(std::move(item));
  }

  /// A line is too thin to be meant, and must not cover what it runs around.
  bool hitTest(Point point, HitPath&) override {
    return lineWidth_ <= 0 && bounds_.contains(point);
  }

 private:
  static constexpr double idealLength = 10;
  [[nodiscard]] static double clamped(double channel) { return std::clamp(channel, 0.0, 1.0); }

  [[nodiscard]] Size measure(const ProposedSize& proposal) override {
    return {proposal.width.value_or(idealLength), proposal.height.value_or(idealLength)};
  }

  MovingShape shape_;
  double lineWidth_ = 0;
  Animated<4> color_{opacityTolerance};
};

class OpacityNode;

class OpacityElement final : public ElementFor<OpacityNode> {
 public:
  OpacityElement(View view, double value) : content(std::move(view)), opacity(value) {}
  View content;
  double opacity;
};

class OpacityNode final : public NodeFor<OpacityNode, WrapperNode, OpacityElement> {
 public:
  using NodeFor::NodeFor;

  void apply(const OpacityElement& element) {
    if (opacity_.set({element.opacity}, Transaction::current(), graph().now()))
      graph().noteAnimationStarted();
    updateChild(element.content);
  }

  bool advance(bool isVisible) override {
    opacity_.advance(graph().frameTime());
    const bool isContentMoving = child_->advance(isVisible && isShown());
    return opacity_.isMoving() || (isShown() && isContentMoving);
  }

  void place(const Rect& bounds, const ProposedSize& proposal) override {
    bounds_ = bounds;
    if (isShown() || graph().preparesHidden()) child_->place(bounds, proposal);
  }

  void draw(DisplayList& list, const DrawState& state) override {
    const double opacity = std::clamp(opacity_.values()[0], 0.0, 1.0);
    if (opacity <= 0) return;
    DrawState inner = state;
    inner.opacity *= opacity;
    child_->draw(list, inner);
  }

  bool hitTest(Point point, HitPath& path) override {
    return opacity_.target()[0] > 0 && child_->hitTest(point, path);
  }
  [[nodiscard]] bool isShown() const override {
    return opacity_.target()[0] > 0 || opacity_.isMoving();
  }

 private:
  Animated<1> opacity_{opacityTolerance};
};

class ClipNode;

class ClipElement final : public ElementFor<ClipNode> {
 public:
  ClipElement(View view, Shape clipShape) : content(std::move(view)), shape(std::move(clipShape)) {}
  View content;
  Shape shape;
};

class ClipNode final : public NodeFor<ClipNode, WrapperNode, ClipElement> {
 public:
  using NodeFor::NodeFor;

  void apply(const ClipElement& element) {
    if (shape_.take(element.shape, graph())) graph().noteAnimationStarted();
    updateChild(element.content);
  }

  bool advance(bool isVisible) override {
    shape_.advance(graph().frameTime());
    return WrapperNode::advance(isVisible) || shape_.isMoving();
  }

  void draw(DisplayList& list, const DrawState& state) override {
    DrawState inner = state;
    inner.clips.push_back(std::make_shared<const Path>(shape_.path(drawnBounds())));
    child_->draw(list, inner);
  }

  bool hitTest(Point point, HitPath& path) override {
    return bounds_.contains(point) && child_->hitTest(point, path);
  }

 private:
  MovingShape shape_;
};

class LayeredNode;

/// A view with another one in front of it or behind it.
class LayeredElement final : public ElementFor<LayeredNode> {
 public:
  LayeredElement(View view, View otherView, Alignment otherAlignment, bool isOtherInFront)
      : children{std::move(view), std::move(otherView)},
        alignment(otherAlignment),
        isInFront(isOtherInFront) {}
  std::vector<View> children;
  Alignment alignment;
  bool isInFront;
};

class LayeredNode final : public NodeFor<LayeredNode, ContainerNode, LayeredElement> {
 public:
  using NodeFor::NodeFor;

  void apply(const LayeredElement& element) {
    alignment_ = element.alignment;
    isInFront_ = element.isInFront;
    updateChildren(element.children);
  }

  void place(const Rect& bounds, const ProposedSize& proposal) override {
    bounds_ = bounds;
    children_[0]->place(bounds, proposal);
    if (!children_[1]->isShown() && !graph().preparesHidden()) return;
    const auto offer = ProposedSize::of(bounds.size());
    children_[1]->place(aligned(children_[1]->sizeThatFits(offer), bounds, alignment_), offer);
  }

  void draw(DisplayList& list, const DrawState& state) override {
    children_[isInFront_ ? 0 : 1]->draw(list, state);
    children_[isInFront_ ? 1 : 0]->draw(list, state);
  }
  bool hitTest(Point point, HitPath& path) override {
    return children_[isInFront_ ? 1 : 0]->hitTest(point, path) ||
           children_[isInFront_ ? 0 : 1]->hitTest(point, path);
  }

 private:
  [[nodiscard]] Size measure(const ProposedSize& proposal) override {
    return children_[0]->sizeThatFits(proposal);
  }

  Alignment alignment_;
  bool isInFront_ = true;
};

}  // namespace

View View::opacity(double opacity) const {
  return View(std::make_shared<OpacityElement>(*this, opacity));
}

View View::clipShape(Shape shape) const {
  return View(std::make_shared<ClipElement>(*this, std::move(shape)));
}

View View::overlay(View other, Alignment alignment) const {
  return View(std::make_shared<LayeredElement>(*this, std::move(other), alignment, true));
}

View View::background(View other, Alignment alignment) const {
  return View(std::make_shared<LayeredElement>(*this, std::move(other), alignment, false));
}

View fill(Shape shape, Color color) {
  return View(std::make_shared<ShapeElement>(std::move(shape), color, 0));
}

View stroke(Shape shape, Color color, double lineWidth) {
  return View(std::make_shared<ShapeElement>(std::move(shape), color, lineWidth));
}

}  // namespace valdrix::view
