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
      if (wasVisible())
        startSwap();
      else
        swap_.jump({1});
      name_ = element.name;
    }
    font_ = element.font;
    color_ = element.color;
  }

  bool advance(bool isVisible) override {
    LeafNode::advance(isVisible);
    swap_.advance(graph().frameTime());
    return swap_.isMoving();
  }

  void draw(DisplayList& list, const DrawState& state) override {
    // First half: the old symbol leaves. Second half: the new one comes. Never both.
    const double progress = swap_.values()[0];
    const double presence = std::abs(2 * progress - 1);
    add(list, state, progress < 0.5 ? former_ : name_, drawnCenter(), presence);
  }

 private:
  /// The symbol that is seen now leaves from the size that it has. One that is leaving already just
  /// gives way to another one.
  void startSwap() {
    const double progress = swap_.values()[0];
    if (progress < 0.5) return;
    former_ = name_;
    swap_.jump({1 - progress});
    swap_.set({1}, Transaction{EaseOut{swapDuration}}, graph().now());
  }

  [[nodiscard]] Size measure(const ProposedSize&) override {
    const Symbol* symbol = symbolNamed(name_, font_.weight);
    if (!symbol) return {};
    return {symbol->size.width * font_.size, symbol->size.height * font_.size};
  }

  void add(DisplayList& list, const DrawState& state, const std::string& name, Point center,
           double presence) const {
    const Symbol* symbol = symbolNamed(name, font_.weight);
    if (!symbol || presence <= 0) return;
    const double scale = font_.size * (swapScale + (1 - swapScale) * presence);
    const Point origin{center.x - symbol->size.width * scale / 2,
                       center.y - symbol->size.height * scale / 2};
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
  /// From the former symbol (0) to the present one (1).
  Animated<1> swap_{0.002};
};

}  // namespace

View symbol(std::string name, Font font, Color color) {
  return View(std::make_shared<SymbolElement>(std::move(name), font, color));
}

}  // namespace valdrix::view
