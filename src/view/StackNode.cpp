#include <algorithm>
#include <limits>
#include <numeric>

#include "view/View.h"

namespace valdrix::view {

namespace {

/// Main and cross axis of a stack, so that rows and columns share one algorithm.
struct AxisMap {
  Axis axis;

  [[nodiscard]] double main(Size size) const {
    return axis == Axis::horizontal ? size.width : size.height;
  }
  [[nodiscard]] double cross(Size size) const {
    return axis == Axis::horizontal ? size.height : size.width;
  }
  [[nodiscard]] std::optional<double> main(const ProposedSize& size) const {
    return axis == Axis::horizontal ? size.width : size.height;
  }
  [[nodiscard]] std::optional<double> cross(const ProposedSize& size) const {
    return axis == Axis::horizontal ? size.height : size.width;
  }
  [[nodiscard]] ProposedSize proposal(std::optional<double> main,
                                      std::optional<double> cross) const {
    return axis == Axis::horizontal ? ProposedSize{main, cross} : ProposedSize{cross, main};
  }
  [[nodiscard]] Size size(double main, double cross) const {
    return axis == Axis::horizontal ? Size{main, cross} : Size{cross, main};
  }
};

class StackNode;

class StackElement final : public ElementFor<StackNode> {
 public:
  StackElement(Axis stackAxis, Alignment stackAlignment, double stackSpacing,
               std::vector<View> stackChildren)
      : axis(stackAxis),
        alignment(stackAlignment),
        spacing(stackSpacing),
        children(std::move(stackChildren)) {}
  Axis axis;
  Alignment alignment;
  double spacing;
  std::vector<View> children;
};

class StackNode final : public NodeFor<StackNode, ContainerNode, StackElement> {
 public:
  using NodeFor::NodeFor;

  void apply(const StackElement& element) {
    map_ = {element.axis};
    alignment_ = element.alignment;
    spacing_ = element.spacing;
    updateChildren(element.children);
    for (const auto& child : children_) child->setStackAxis(element.axis);
  }

  [[nodiscard]] Size sizeThatFits(const ProposedSize& proposal) override {
    const auto sizes = sizesFor(proposal);
    double main = gaps();
    double cross = 0;
    for (const auto& size : sizes) {
      main += map_.main(size);
      cross = std::max(cross, map_.cross(size));
    }
    return map_.size(main, cross);
  }

  void place(const Rect& bounds) override {
    bounds_ = bounds;
    const auto sizes = sizesFor(ProposedSize::of(bounds.size()));
    double offset = 0;
    for (std::size_t i = 0; i < children_.size(); ++i) {
      const double length = map_.main(sizes[i]);
      const Rect lane = map_.axis == Axis::horizontal
                            ? Rect{bounds.x + offset, bounds.y, length, bounds.height}
                            : Rect{bounds.x, bounds.y + offset, bounds.width, length};
      children_[i]->place(aligned(sizes[i], lane, alignment_));
      offset += length + spacing_;
    }
  }

 private:
  [[nodiscard]] double gaps() const {
    return children_.empty() ? 0 : spacing_ * static_cast<double>(children_.size() - 1);
  }

  [[nodiscard]] std::vector<Size> sizesFor(const ProposedSize& proposal) const {
    std::vector<Size> sizes(children_.size());
    const auto cross = map_.cross(proposal);
    const auto main = map_.main(proposal);
    if (!main || *main == ProposedSize::infinity) {
      for (std::size_t i = 0; i < children_.size(); ++i)
        sizes[i] = children_[i]->sizeThatFits(map_.proposal(main, cross));
      return sizes;
    }
    double left = std::max(0.0, *main - gaps());
    auto count = static_cast<double>(children_.size());
    for (const std::size_t i : byFlexibility(cross)) {
      sizes[i] = children_[i]->sizeThatFits(map_.proposal(std::max(0.0, left / count), cross));
      left -= map_.main(sizes[i]);
      --count;
    }
    return sizes;
  }

  /// The children's indices, the one that can change least first.
  [[nodiscard]] std::vector<std::size_t> byFlexibility(std::optional<double> cross) const {
    std::vector<std::size_t> order(children_.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    if (order.size() < 2) return order;
    std::vector<double> flexibility(order.size());
    for (std::size_t i = 0; i < order.size(); ++i)
      flexibility[i] =
          map_.main(children_[i]->sizeThatFits(map_.proposal(ProposedSize::infinity, cross))) -
          map_.main(children_[i]->sizeThatFits(map_.proposal(0, cross)));
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return flexibility[a] < flexibility[b]; });
    return order;
  }

  AxisMap map_{Axis::horizontal};
  Alignment alignment_;
  double spacing_ = 0;
};

class LayersNode;

class LayersElement final : public ElementFor<LayersNode> {
 public:
  LayersElement(Alignment layersAlignment, std::vector<View> layers)
      : alignment(layersAlignment), children(std::move(layers)) {}
  Alignment alignment;
  std::vector<View> children;
};

class LayersNode final : public NodeFor<LayersNode, ContainerNode, LayersElement> {
 public:
  using NodeFor::NodeFor;

  void apply(const LayersElement& element) {
    alignment_ = element.alignment;
    updateChildren(element.children);
  }

  [[nodiscard]] Size sizeThatFits(const ProposedSize& proposal) override {
    proposal_ = proposal;
    Size largest;
    for (const auto& child : children_) {
      const Size size = child->sizeThatFits(proposal);
      largest = {std::max(largest.width, size.width), std::max(largest.height, size.height)};
    }
    return largest;
  }

  void place(const Rect& bounds) override {
    bounds_ = bounds;
    // Each layer is offered what the stack was offered, and not what the largest layer made of it:
    // a shape fills the frame around the stack, whatever larger layer it lies below.
    const auto proposal = proposal_.value_or(ProposedSize::of(bounds.size()));
    for (const auto& child : children_)
      child->place(aligned(child->sizeThatFits(proposal), bounds, alignment_));
  }

 private:
  /// What the size that the stack is placed with was measured for.
  std::optional<ProposedSize> proposal_;
  Alignment alignment_;
};

class SpacerNode;

class SpacerElement final : public ElementFor<SpacerNode> {
 public:
  explicit SpacerElement(double length) : minLength(length) {}
  double minLength;
};

class SpacerNode final : public NodeFor<SpacerNode, LeafNode, SpacerElement> {
 public:
  using NodeFor::NodeFor;
  void apply(const SpacerElement& element) { minLength_ = element.minLength; }
  void setStackAxis(Axis axis) override { map_ = {axis}; }
  [[nodiscard]] Size sizeThatFits(const ProposedSize& proposal) override {
    return map_.size(std::max(minLength_, map_.main(proposal).value_or(minLength_)), 0);
  }
  void draw(DisplayList&, const DrawState&) override {}
  bool hitTest(Point, HitPath&) override { return false; }

 private:
  AxisMap map_{Axis::horizontal};
  double minLength_ = 0;
};

}  // namespace

View hStack(HorizontalStackStyle style, std::vector<View> children) {
  return View(std::make_shared<StackElement>(
      Axis::horizontal, Alignment{HorizontalAlignment::center, style.alignment}, style.spacing,
      std::move(children)));
}

View vStack(VerticalStackStyle style, std::vector<View> children) {
  return View(std::make_shared<StackElement>(Axis::vertical,
                                             Alignment{style.alignment, VerticalAlignment::center},
                                             style.spacing, std::move(children)));
}

View zStack(Alignment alignment, std::vector<View> children) {
  return View(std::make_shared<LayersElement>(alignment, std::move(children)));
}

View spacer(double minLength) { return View(std::make_shared<SpacerElement>(minLength)); }

View::View() : View(zStack(Alignment::center, {})) {}

}  // namespace valdrix::view
