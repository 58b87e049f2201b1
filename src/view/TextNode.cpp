#include <algorithm>
#include <limits>
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
constexpr double fadeDuration = 0.12;

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
    if (!isSameText && wasVisible() && Transaction::current().animation)
      startFade();
    else
      fade_.jump({0});
    text_ = element.text;
    style_ = std::move(style);
    color_ = element.color;
    isMeasured_ = false;
  }

  bool advance(bool isVisible) override {
    LeafNode::advance(isVisible);
    fade_.advance(graph().frameTime());
    return fade_.isMoving();
  }

  void draw(DisplayList& list, const DrawState& state) override {
    const Point origin = drawnBounds().origin();
    latest_ = {origin.x, origin.y, bounds_.width + fitTolerance, bounds_.height};
    // First the former text leaves, then the new one comes. Never both: two numbers on top of each
    // other read as a third one. Trailing edges stay together, where numbers in a column end.
    const double balance = 1 - 2 * fade_.values()[0];
    add(list, state, former_,
        {latest_.maxX() - formerSize_.width, origin.y, formerSize_.width, formerSize_.height},
        -balance);
    add(list, state, text_, latest_, balance);
  }

 private:
  /// A text that keeps changing, as under a held key, just changes: one that left and came each
  /// time would flicker.
  void startFade() {
    const double sinceChange = graph().now() - std::exchange(changeTime_, graph().now());
    if (sinceChange < fadeDuration) return;
    former_ = text_;
    formerSize_ = latest_.size();
    fade_.jump({1});
    fade_.set({0}, Transaction{EaseOut{fadeDuration}}, graph().now());
  }

  [[nodiscard]] Size measure(const ProposedSize& proposal) override {
    if (!isMeasured_) ideal_ = measured(ProposedSize::infinity);
    isMeasured_ = true;
    const double width = proposal.width.value_or(ProposedSize::infinity);
    return width >= ideal_.width - fitTolerance ? ideal_ : measured(std::max(0.0, width));
  }
  [[nodiscard]] Size measured(double width) const {
    return graph().services().textMetrics.measure(text_, style_, width);
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
  Size formerSize_;
  /// Where the text was drawn last.
  Rect latest_;
  double changeTime_ = -std::numeric_limits<double>::infinity();
  /// From the former text (1) to the present one (0).
  Animated<1> fade_{0.002};
};

}  // namespace

View text(std::string text, TextStyle style, Color color) {
  return View(std::make_shared<TextElement>(std::move(text), std::move(style), color));
}

}  // namespace valdrix::view
