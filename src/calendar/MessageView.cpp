#include "calendar/MessageView.h"

namespace valdrix {

using view::Color;
using view::FontWeight;
using view::TextStyle;

namespace {

// In points, between lines and between symbol and text.
constexpr double spacing = 6;

}  // namespace

view::View MessageView::body() const {
  const view::Font symbolFont{.size = 11, .weight = FontWeight::semibold};
  const TextStyle messageStyle{.font = {.size = 12, .weight = FontWeight::medium}};
  const TextStyle detailStyle{.font = {.size = 11}, .lineLimit = detailLineLimit};
  return view::vStack(
      {.alignment = view::HorizontalAlignment::leading, .spacing = spacing},
      {
          view::hStack({.spacing = spacing},
                       {view::symbol(symbolName, symbolFont, Color::white(symbolOpacity)),
                        view::text(message, messageStyle, Color::white(messageOpacity))}),
          view::text(detail, detailStyle, Color::white(detailOpacity)),
      });
}

}  // namespace valdrix
