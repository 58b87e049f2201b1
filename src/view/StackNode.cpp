#include <algorithm>
#include <functional>
#include <tuple>

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
  }

  void place(const Rect& bounds, const ProposedSize& proposal) override {
    bounds_ = bounds;
    // Children may now fill the stack's own thickness where none was offered.
    share(map_.main(proposal), map_.cross(proposal).value_or(map_.cross(bounds.size())));
    double offset = 0;
    for (std::size_t i = 0; i < children_.size(); ++i) {
      const auto& [offer, size] = shares_[i];
      const double length = map_.main(size);
      const Rect lane = map_.axis == Axis::horizontal
                            ? Rect{bounds.x + offset, bounds.y, length, bounds.height}
                            : Rect{bounds.x, bounds.y + offset, bounds.width, length};
      children_[i]->place(aligned(size, lane, alignment_), offer);
      offset += length + spacing_;
    }
  }

  [[nodiscard]] Axis stackAxis() const override { return map_.axis; }

 private:
  [[nodiscard]] Size measure(const ProposedSize& proposal) override {
    share(map_.main(proposal), map_.cross(proposal));
    double main = gaps();
    double cross = 0;
    for (const auto& [offer, size] : shares_) {
      main += map_.main(size);
      cross = std::max(cross, map_.cross(size));
    }
    return map_.size(main, cross);
  }

  [[nodiscard]] double gaps() const {
    return children_.empty() ? 0 : spacing_ * static_cast<double>(children_.size() - 1);
  }

  /// Offers the children their parts of `main`: the least flexible first, and each an equal part of
  /// what is left then. Spacers only take what all others leave.
  void share(std::optional<double> main, std::optional<double> cross) {
    shares_.resize(children_.size());
    if (!main || *main == ProposedSize::infinity) {
      for (std::size_t i = 0; i < children_.size(); ++i) offer(i, main, cross);
      return;
    }
    sortByFlexibility(cross);
    const auto firstSpacer =
        std::find_if(order_.begin(), order_.end(), std::mem_fn(&Rank::isSpacer));
    double left = *main - gaps();
    for (auto spacer = firstSpacer; spacer != order_.end(); ++spacer) left -= spacer->least;
    for (auto child = order_.begin(); child != order_.end(); ++child) {
      if (child->isSpacer) left += child->least;
      const auto peers = (child->isSpacer ? order_.end() : firstSpacer) - child;
      left -= offer(child->index, std::max(0.0, left / static_cast<double>(peers)), cross);
    }
  }

  /// Offers a child `main` and gives what it takes of it.
  double offer(std::size_t index, std::optional<double> main, std::optional<double> cross) {
    const ProposedSize proposal = map_.proposal(main, cross);
    shares_[index] = {proposal, children_[index]->sizeThatFits(proposal)};
    return map_.main(shares_[index].size);
  }

  void sortByFlexibility(std::optional<double> cross) {
    order_.resize(children_.size());
    for (std::size_t i = 0; i < order_.size(); ++i) {
      const double least = offer(i, 0, cross);
      order_[i] = {i, children_[i]->isSpacer(), least,
                   offer(i, ProposedSize::infinity, cross) - least};
    }
    std::sort(order_.begin(), order_.end());
  }

  struct Share {
    ProposedSize offer;
    Size size;
  };
  struct Rank {
    std::size_t index;
    bool isSpacer;
    double least;
    double flexibility;
    /// Of two that may grow without end, the one that needs more comes first.
    bool operator<(const Rank& other) const {
      return std::tie(isSpacer, flexibility, other.least, index) <
             std::tie(other.isSpacer, other.flexibility, least, other.index);
    }
  };

  // Kept between layouts, so that a frame allocates nothing for them.
  std::vector<Share> shares_;
  std::vector<Rank> order_;
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

  void place(const Rect& bounds, const ProposedSize& proposal) override {
    bounds_ = bounds;
    // Each layer is offered what the stack was offered, and not what the largest layer made of it:
    // a shape fills the frame around the stack, whatever larger layer it lies below.
    const ProposedSize offer{proposal.width.value_or(bounds.width),
                             proposal.height.value_or(bounds.height)};
    for (const auto& child : children_)
      child->place(aligned(child->sizeThatFits(offer), bounds, alignment_), offer);
  }

 private:
  [[nodiscard]] Size measure(const ProposedSize& proposal) override {
    Size largest;
    for (const auto& child : children_) {
      const Size size = child->sizeThatFits(proposal);
      largest = {std::max(largest.width, size.width), std::max(largest.height, size.height)};
    }
    return largest;
  }

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
  void draw(DisplayList&, const DrawState&) override {}
  bool hitTest(Point, HitPath&) override { return false; }
  [[nodiscard]] bool isSpacer() const override { return true; }

 private:
  [[nodiscard]] Size measure(const ProposedSize& proposal) override {
    const AxisMap map{stackAxis()};
    return map.size(std::max(minLength_, map.main(proposal).value_or(minLength_)), 0);
  }

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
