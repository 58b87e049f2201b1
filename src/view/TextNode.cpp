#include <algorithm>
#include <cmath>
#include <utility>

#include "view/Animated.h"
#include "view/View.h"
#include "view/ViewGraph.h"

namespace valdrix::view {

namespace {

/// Layout rounds differently in different places; text may be this much wider, in points, than what
/// it is offered before it is cut.
constexpr double fitTolerance = 0.05;
/// How long a text takes to give way to the next when it changes within an animation, in seconds.
constexpr double crossFade = 0.12;

class TextNode;

class TextElement final : public ElementFor<TextNode> {
 public:
  TextElement(std::string content, TextStyle textStyle, const Color& textColor)
      : text(std::move(content)), style(std::move(textStyle)), color(textColor) {}
  std::string text;
  TextStyle style;
  Color color;
};

class TextNode final : public NodeFor<TextNode, LeafNode, TextElement> {
 public:
  using NodeFor::NodeFor;

  void apply(const TextElement& element) {
    TextStyle style = element.style;
    if (style.locale.empty()) style.locale = graph().locale();
    const bool isSameText = element.text == text_;
    if (isSameText && style == style_) {
      color_ = element.color;
      return;
    }
    const bool isVisible = lastDrawn_ != 0 && lastDrawn_ == graph().frameNumber();
    if (!isSameText && isVisible && graph().transaction().animation) {
      former_ = std::exchange(text_, element.text);
      formerBounds_ = drawnBounds_;
      fade_.jump({1});
      fade_.set({0}, Transaction{EaseOut{crossFade}}, graph().now());
    } else {
      text_ = element.text;
      fade_.jump({0});
    }
    style_ = std::move(style);
    color_ = element.color;
    isMeasured_ = false;
  }

  [[nodiscard]] Size sizeThatFits(const ProposedSize& proposal) override {
    const double width = proposal.width.value_or(ProposedSize::infinity);
    if (isMeasured_ && width >= ideal_.width - fitTolerance && style_.lineLimit == 1) return ideal_;
    if (!isMeasured_) {
      ideal_ = measure(ProposedSize::infinity);
      isMeasured_ = true;
    }
    return width >= ideal_.width - fitTolerance ? ideal_ : measure(width);
  }

  void draw(DisplayList& list, const DrawState& state) override {
    lastDrawn_ = graph().frameNumber();
    Rect bounds = bounds_;
    bounds.width += fitTolerance;
    if (const double scale = graph().restingScale(); scale > 0) {
      bounds.x = std::round(bounds.x * scale) / scale;
      bounds.y = std::round(bounds.y * scale) / scale;
    }
    drawnBounds_ = bounds;
    const double formerPart = std::clamp(fade_.value(graph().frameTime())[0], 0.0, 1.0);
    if (formerPart > 0) {
      // Trailing edges stay together, where numbers in a column end.
      Rect formerBounds = formerBounds_;
      formerBounds.x = bounds.maxX() - formerBounds.width;
      formerBounds.y = bounds.y;
      add(list, state, former_, formerBounds, formerPart);
    }
    add(list, state, text_, bounds, 1 - formerPart);
  }

  [[nodiscard]] bool isMoving() const override { return fade_.isMoving(graph().frameTime()); }

 private:
  [[nodiscard]] Size measure(double width) const {
    return graph().services().textMetrics.measure(text_, style_, std::max(0.0, width));
  }

  void add(DisplayList& list, const DrawState& state, const std::string& text, const Rect& bounds,
           double part) const {
    if (text.empty() || part <= 0) return;
    DisplayItem item = newItem(DisplayItem::Kind::text, color_.withOpacity(part), state);
    item.text = text;
    item.style = style_;
    item.bounds = bounds;
    list.push_back(std::move(item));
  }

  std::string text_;
  TextStyle style_;
  Color color_;
  Size ideal_;
  bool isMeasured_ = false;

  std::string former_;
  Rect formerBounds_;
  Rect drawnBounds_;
  std::uint64_t lastDrawn_ = 0;
  /// How much of the former text still shows.
  Animated<1> fade_{0.002};
};

}  // namespace

View text(std::string text, TextStyle style, Color color) {
  return View(std::make_shared<TextElement>(std::move(text), std::move(style), color));
}

}  // namespace valdrix::view
