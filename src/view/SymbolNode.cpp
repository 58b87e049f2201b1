#include <algorithm>
#include <cmath>
#include <utility>

#include "view/Animated.h"
#include "view/SymbolArt.h"
#include "view/View.h"
#include "view/ViewGraph.h"

namespace valdrix::view {

namespace {

/// How long one symbol takes to give way to the next, in seconds.
constexpr double swapDuration = 0.2;
/// The size that a symbol shrinks to, or grows from, while they swap.
constexpr double swapScale = 0.6;

class SymbolNode;

class SymbolElement final : public ElementFor<SymbolNode> {
 public:
  SymbolElement(std::string symbolName, const Font& symbolFont, const Color& symbolColor)
      : name(std::move(symbolName)), font(symbolFont), color(symbolColor) {}
  std::string name;
  Font font;
  Color color;
};

class SymbolNode final : public NodeFor<SymbolNode, LeafNode, SymbolElement> {
 public:
  using NodeFor::NodeFor;

  void apply(const SymbolElement& element) {
    if (element.name != name_) {
      former_ = std::exchange(name_, element.name);
      swap_.jump({1});
      const bool isVisible = lastDrawn_ != 0 && lastDrawn_ == graph().frameNumber();
      if (isVisible) {
        swap_.jump({0});
        swap_.set({1}, Transaction{EaseOut{swapDuration}}, graph().now());
      }
    }
    font_ = element.font;
    color_ = element.color;
  }

  [[nodiscard]] Size sizeThatFits(const ProposedSize&) override {
    const Symbol* symbol = symbolNamed(name_, font_.weight);
    if (!symbol) return {};
    return {symbol->size.width * font_.size, symbol->size.height * font_.size};
  }

  void draw(DisplayList& list, const DrawState& state) override {
    lastDrawn_ = graph().frameNumber();
    // First half: the old symbol leaves. Second half: the new one comes. Never both.
    const double progress = swap_.value(graph().frameTime())[0];
    const bool isFirstHalf = progress < 0.5;
    const double presence = std::abs(2 * progress - 1);
    add(list, state, isFirstHalf ? former_ : name_, presence);
  }

  [[nodiscard]] bool isMoving() const override { return swap_.isMoving(graph().frameTime()); }

 private:
  void add(DisplayList& list, const DrawState& state, const std::string& name,
           double presence) const {
    const Symbol* symbol = symbolNamed(name, font_.weight);
    if (!symbol || presence <= 0) return;
    const double scale = font_.size * (swapScale + (1 - swapScale) * presence);
    Point origin{bounds_.midX() - symbol->size.width * scale / 2,
                 bounds_.midY() - symbol->size.height * scale / 2};
    if (const double pixels = graph().restingScale(); pixels > 0)
      origin = {std::round(origin.x * pixels) / pixels, std::round(origin.y * pixels) / pixels};
    for (const auto& part : symbol->parts) {
      const auto kind = part.isStroked ? DisplayItem::Kind::stroke : DisplayItem::Kind::fill;
      DisplayItem item = newItem(kind, color_.withOpacity(presence), state);
      item.path = part.path.transformed(scale, origin);
      item.lineWidth = part.lineWidth * scale;
      item.hasRoundCaps = part.hasRoundCaps;
      item.bounds = item.path.bounds().outset(item.lineWidth / 2);
      list.push_back(std::move(item));
    }
  }

  std::string name_;
  std::string former_;
  Font font_;
  Color color_;
  std::uint64_t lastDrawn_ = 0;
  /// From the former symbol (0) to the present one (1).
  Animated<1> swap_{0.002};
};

}  // namespace

View symbol(std::string name, Font font, Color color) {
  return View(std::make_shared<SymbolElement>(std::move(name), font, color));
}

}  // namespace valdrix::view
