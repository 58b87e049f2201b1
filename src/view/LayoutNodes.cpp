#include <algorithm>

#include "view/Animated.h"
#include "view/View.h"
#include "view/ViewGraph.h"

namespace valdrix::view {

namespace {

/// A tenth of a point: on its way to rest nobody sees less.
constexpr double lengthTolerance = 0.1;

class FrameNode;

class FrameElement final : public ElementFor<FrameNode> {
 public:
  FrameElement(View view, const FrameSize& frameSize) : content(std::move(view)), size(frameSize) {}
  View content;
  FrameSize size;
};

class FrameNode final : public NodeFor<FrameNode, WrapperNode, FrameElement> {
 public:
  using NodeFor::NodeFor;

  void apply(const FrameElement& element) {
    const Animated<2>::Values sides{element.size.width.value_or(0),
                                    element.size.height.value_or(0)};
    const bool isSameKind = child_ && size_.width.has_value() == element.size.width.has_value() &&
                            size_.height.has_value() == element.size.height.has_value();
    if (!isSameKind)
      sides_.jump(sides);
    else if (sides_.set(sides, Transaction::current(), graph().now()))
      graph().noteAnimationStarted();
    size_ = element.size;
    updateChild(element.content);
  }

  bool advance(bool isVisible) override {
    if (sides_.advance(graph().frameTime())) sizesChanged();
    return WrapperNode::advance(isVisible) || sides_.isMoving();
  }

  void place(const Rect& bounds, const ProposedSize& proposal) override {
    bounds_ = bounds;
    placeChild(bounds, inner(proposal), size_.alignment);
  }

 private:
  [[nodiscard]] Size measure(const ProposedSize& proposal) override {
    const ProposedSize own = inner(proposal);
    if (size_.width && size_.height) return {*own.width, *own.height};
    const Size size = child_->sizeThatFits(own);
    return {size_.width ? *own.width : size.width, size_.height ? *own.height : size.height};
  }

  /// What the child is offered: the frame's own sides, which a spring may carry below 0, and else
  /// what the frame is offered.
  [[nodiscard]] ProposedSize inner(const ProposedSize& proposal) const {
    const auto& [width, height] = sides_.values();
    return {size_.width ? std::max(0.0, width) : proposal.width,
            size_.height ? std::max(0.0, height) : proposal.height};
  }

  FrameSize size_;
  Animated<2> sides_{lengthTolerance};
};

class LimitsNode;

class LimitsElement final : public ElementFor<LimitsNode> {
 public:
  LimitsElement(View view, const FrameLimits& frameLimits)
      : content(std::move(view)), limits(frameLimits) {}
  View content;
  FrameLimits limits;
};

class LimitsNode final : public NodeFor<LimitsNode, WrapperNode, LimitsElement> {
 public:
  using NodeFor::NodeFor;

  void apply(const LimitsElement& element) {
    limits_ = element.limits;
    updateChild(element.content);
  }

  void place(const Rect& bounds, const ProposedSize& proposal) override {
    bounds_ = bounds;
    placeChild(bounds, inner(proposal), limits_.alignment);
  }

 private:
  using Bound = std::optional<double>;

  [[nodiscard]] Size measure(const ProposedSize& proposal) override {
    const ProposedSize offered = inner(proposal);
    const Size size = child_->sizeThatFits(offered);
    return {fitted(size.width, offered.width, limits_.minWidth, limits_.maxWidth),
            fitted(size.height, offered.height, limits_.minHeight, limits_.maxHeight)};
  }

  [[nodiscard]] ProposedSize inner(const ProposedSize& proposal) const {
    return {held(proposal.width, limits_.minWidth, limits_.maxWidth),
            held(proposal.height, limits_.minHeight, limits_.maxHeight)};
  }
  [[nodiscard]] static Bound held(Bound offered, Bound least, Bound most) {
    if (!offered) return offered;
    if (least) offered = std::max(*offered, *least);
    if (most) offered = std::min(*offered, *most);
    return offered;
  }
  /// A lower bound lets the side follow the child down to it, an upper bound lets it take up what
  /// is offered as far as that.
  [[nodiscard]] static double fitted(double length, Bound offered, Bound least, Bound most) {
    if (least) length = std::max(*least, std::min(length, offered.value_or(length)));
    if (most) length = std::min(*most, std::max(length, offered.value_or(length)));
    return length;
  }

  FrameLimits limits_;
};

class FixedSizeNode;

class FixedSizeElement final : public ElementFor<FixedSizeNode> {
 public:
  FixedSizeElement(View view, bool isFixedHorizontally, bool isFixedVertically)
      : content(std::move(view)), horizontal(isFixedHorizontally), vertical(isFixedVertically) {}
  View content;
  bool horizontal;
  bool vertical;
};

class FixedSizeNode final : public NodeFor<FixedSizeNode, WrapperNode, FixedSizeElement> {
 public:
  using NodeFor::NodeFor;

  void apply(const FixedSizeElement& element) {
    horizontal_ = element.horizontal;
    vertical_ = element.vertical;
    updateChild(element.content);
  }
  void place(const Rect& bounds, const ProposedSize& proposal) override {
    bounds_ = bounds;
    placeChild(bounds, inner(proposal), Alignment::center);
  }

 private:
  [[nodiscard]] Size measure(const ProposedSize& proposal) override {
    return child_->sizeThatFits(inner(proposal));
  }
  [[nodiscard]] ProposedSize inner(const ProposedSize& proposal) const {
    return {horizontal_ ? std::nullopt : proposal.width,
            vertical_ ? std::nullopt : proposal.height};
  }

  bool horizontal_ = false;
  bool vertical_ = false;
};

class PaddingNode;

class PaddingElement final : public ElementFor<PaddingNode> {
 public:
  PaddingElement(View view, const EdgeInsets& edgeInsets)
      : content(std::move(view)), insets(edgeInsets) {}
  View content;
  EdgeInsets insets;
};

class PaddingNode final : public NodeFor<PaddingNode, WrapperNode, PaddingElement> {
 public:
  using NodeFor::NodeFor;

  void apply(const PaddingElement& element) {
    const auto& [top, leading, bottom, trailing] = element.insets;
    const Animated<4>::Values insets{top, leading, bottom, trailing};
    if (insets_.set(insets, Transaction::current(), graph().now())) graph().noteAnimationStarted();
    updateChild(element.content);
  }

  bool advance(bool isVisible) override {
    if (insets_.advance(graph().frameTime())) sizesChanged();
    return WrapperNode::advance(isVisible) || insets_.isMoving();
  }

  void place(const Rect& bounds, const ProposedSize& proposal) override {
    bounds_ = bounds;
    const auto& [top, leading, bottom, trailing] = insets_.values();
    child_->place(
        {bounds.x + leading, bounds.y + top, std::max(0.0, bounds.width - leading - trailing),
         std::max(0.0, bounds.height - top - bottom)},
        inner(proposal));
  }

 private:
  [[nodiscard]] Size measure(const ProposedSize& proposal) override {
    const auto& [top, leading, bottom, trailing] = insets_.values();
    const Size size = child_->sizeThatFits(inner(proposal));
    return {std::max(0.0, size.width + leading + trailing),
            std::max(0.0, size.height + top + bottom)};
  }
  [[nodiscard]] ProposedSize inner(const ProposedSize& proposal) const {
    const auto& [top, leading, bottom, trailing] = insets_.values();
    return {less(proposal.width, leading + trailing), less(proposal.height, top + bottom)};
  }
  [[nodiscard]] static std::optional<double> less(std::optional<double> side, double by) {
    return side ? std::optional(std::max(0.0, *side - by)) : std::nullopt;
  }

  Animated<4> insets_{lengthTolerance};
};

}  // namespace

View View::frame(const FrameSize& size) const {
  return View(std::make_shared<FrameElement>(*this, size));
}

View View::frame(const FrameLimits& limits) const {
  return View(std::make_shared<LimitsElement>(*this, limits));
}

View View::fixedSize(bool horizontal, bool vertical) const {
  return View(std::make_shared<FixedSizeElement>(*this, horizontal, vertical));
}

View View::padding(const EdgeInsets& insets) const {
  return View(std::make_shared<PaddingElement>(*this, insets));
}

}  // namespace valdrix::view
