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

View levelBar(double fraction, double fillOpacity) {
  return view::geometryReader([=](view::Size size) -> View {
           const view::Capsule capsule{.isContinuous = true};
           return view::zStack(view::Alignment::leading,
                               {
                                   view::fill(capsule, Color::white(trackOpacity))
                                       .frame({.width = size.width, .height = barHeight}),
                                   view::fill(capsule, Color::white(fillOpacity))
                                       .frame({.width = std::max(barHeight, size.width * fraction),
                                               .height = barHeight}),
                               });
         })
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
