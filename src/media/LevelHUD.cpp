#include "media/LevelHUD.h"

#include <algorithm>

namespace valdrix {

using view::Color;
using view::Font;
using view::FontDesign;
using view::FontWeight;
using view::TextStyle;
using view::View;

namespace {

// All lengths in points.
constexpr double childSpacing = 10;
constexpr double symbolWidth = 18;
constexpr double barHeight = 4;
constexpr double percentWidth = 36;
constexpr double trackOpacity = 0.18;
constexpr double percentOpacity = 0.7;

/// The filled part of a bar: a capsule from its leading edge, at least a dot and at most the bar,
/// also while a spring carries the fraction past its ends.
struct LevelFill {
  /// Of the bar's width. Percent are near enough to points for the precision of shapes.
  double percent = 0;

  [[nodiscard]] double animatableData() const { return percent; }
  void setAnimatableData(double data) { percent = data; }
  [[nodiscard]] view::Path path(const view::Rect& bar) const {
    const double width = std::min(bar.width, std::max(bar.height, bar.width * percent / 100));
    return view::Capsule{.isContinuous = true}.path({bar.x, bar.y, width, bar.height});
  }
  bool operator==(const LevelFill&) const = default;
};

View levelBar(double fraction, double fillOpacity) {
  return view::fill(view::Capsule{.isContinuous = true}, Color::white(trackOpacity))
      .overlay(view::fill(LevelFill{fraction * 100}, Color::white(fillOpacity)))
      .frame({.height = barHeight});
}

}  // namespace

View LevelHUD::body() const {
  const Font symbolFont{.size = 13, .weight = FontWeight::medium};
  const TextStyle percentStyle{.font = {.size = 11,
                                        .weight = FontWeight::medium,
                                        .design = FontDesign::rounded,
                                        .hasMonospacedDigits = true},
                               .lineLimit = 1};
  return view::hStack(
      {.spacing = childSpacing},
      {
          view::symbol(symbolName, symbolFont, Color::white()).frame({.width = symbolWidth}),
          levelBar(fraction, fillOpacity),
          view::text(percentText, percentStyle, Color::white(percentOpacity))
              .frame({.width = percentWidth, .alignment = view::Alignment::trailing}),
      });
}

}  // namespace valdrix
