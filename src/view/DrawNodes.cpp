#include <algorithm>
#include <cmath>

#include "view/Animated.h"
#include "view/View.h"
#include "view/ViewGraph.h"

namespace valdrix::view {

namespace {

/// Less than half of one of the 255 steps of a channel.
constexpr double opacityTolerance = 0.0015;

/// `rect` with its edges on device pixels, or as it is while something moves.
Rect onPixels(const Rect& rect, double scale) {
  if (scale <= 0) return rect;
  const auto snap = [scale](double edge) { return std::round(edge * scale) / scale; };
  const double left = snap(rect.minX());
  const double top = snap(rect.minY());
  return {left, top, snap(rect.maxX()) - left, snap(rect.maxY()) - top};
}

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
    if (!shape_) {
      data_.jump({element.shape.animatableData()});
      color_.jump({red, green, blue, alpha});
    } else {
      const bool hasNewData =
          data_.set({element.shape.animatableData()}, graph().transaction(), graph().now());
      const bool hasNewColor =
          color_.set({red, green, blue, alpha}, graph().transaction(), graph().now());
      if (hasNewData || hasNewColor) graph().noteAnimationStarted();
    }
    shape_ = element.shape;
    lineWidth_ = element.lineWidth;
  }

  [[nodiscard]] Size sizeThatFits(const ProposedSize& proposal) override {
    return {proposal.width.value_or(idealLength), proposal.height.value_or(idealLength)};
  }

  void draw(DisplayList& list, const DrawState& state) override {
    const auto [red, green, blue, alpha] = color_.value(graph().frameTime());
    if (alpha <= 0) return;
    const Color color{clamped(red), clamped(green), clamped(blue), clamped(alpha)};
    const Rect rect = onPixels(bounds_, graph().restingScale());
    const double data = data_.value(graph().frameTime())[0];
    const auto kind = lineWidth_ > 0 ? DisplayItem::Kind::stroke : DisplayItem::Kind::fill;
    DisplayItem item = newItem(kind, color, state);
    item.path = shape_->path(rect, data);
    item.lineWidth = lineWidth_;
    item.bounds = rect.outset(lineWidth_ / 2);
    list.push_back(std::move(item));
  }

  [[nodiscard]] bool isMoving() const override {
    return data_.isMoving(graph().frameTime()) || color_.isMoving(graph().frameTime());
  }

 private:
  static constexpr double idealLength = 10;
  [[nodiscard]] static double clamped(double channel) { return std::clamp(channel, 0.0, 1.0); }

  std::optional<Shape> shape_;
  double lineWidth_ = 0;
  Animated<1> data_{0.05};
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
    if (!child_)
      opacity_.jump({element.opacity});
    else if (opacity_.set({element.opacity}, graph().transaction(), graph().now()))
      graph().noteAnimationStarted();
    updateChild(element.content);
  }

  void draw(DisplayList& list, const DrawState& state) override {
    const double opacity = std::clamp(opacity_.value(graph().frameTime())[0], 0.0, 1.0);
    if (opacity <= 0) return;
    DrawState inner = state;
    inner.opacity *= opacity;
    child_->draw(list, inner);
  }

  [[nodiscard]] bool isMoving() const override {
    const bool isFading = opacity_.isMoving(graph().frameTime());
    return isFading || (opacity_.target()[0] > 0 && child_->isMoving());
  }
  void setVisible(bool isVisible) override {
    child_->setVisible(isVisible &&
                       (opacity_.target()[0] > 0 || opacity_.isMoving(graph().frameTime())));
  }
  bool hitTest(Point point, HitPath& path) override {
    return opacity_.target()[0] > 0 && child_->hitTest(point, path);
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
    if (!shape_)
      data_.jump({element.shape.animatableData()});
    else if (data_.set({element.shape.animatableData()}, graph().transaction(), graph().now()))
      graph().noteAnimationStarted();
    shape_ = element.shape;
    updateChild(element.content);
  }

  void draw(DisplayList& list, const DrawState& state) override {
    DrawState inner = state;
    inner.clips.push_back(std::make_shared<const Path>(shape_->path(
        onPixels(bounds_, graph().restingScale()), data_.value(graph().frameTime())[0])));
    child_->draw(list, inner);
  }

  [[nodiscard]] bool isMoving() const override {
    return data_.isMoving(graph().frameTime()) || WrapperNode::isMoving();
  }
  bool hitTest(Point point, HitPath& path) override {
    return bounds_.contains(point) && child_->hitTest(point, path);
  }

 private:
  std::optional<Shape> shape_;
  Animated<1> data_{0.05};
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

  [[nodiscard]] Size sizeThatFits(const ProposedSize& proposal) override {
    return children_[0]->sizeThatFits(proposal);
  }
  void place(const Rect& bounds) override {
    bounds_ = bounds;
    children_[0]->place(bounds);
    const Size size = children_[1]->sizeThatFits(ProposedSize::of(bounds.size()));
    children_[1]->place(aligned(size, bounds, alignment_));
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
