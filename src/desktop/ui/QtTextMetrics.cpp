#include "desktop/ui/QtTextMetrics.h"

#include <algorithm>

namespace valdrix::desktop {

namespace {
// The fullest panel shows a clock and ten events of two texts each, some in two widths.
constexpr std::size_t mostEntries = 64;
}  // namespace

view::Size QtTextMetrics::measure(std::string_view text, const view::TextStyle& style,
                                  double maxWidth) const {
  const view::Size size = layout(text, style, maxWidth).size();
  return {std::min(size.width, std::max(maxWidth, 0.0)), size.height};
}

const QtTextLayout& QtTextMetrics::layout(std::string_view text, const view::TextStyle& style,
                                          double maxWidth) const {
  const auto known = std::find_if(entries_.begin(), entries_.end(), [&](const Entry& entry) {
    return entry.text == text && entry.style == style && entry.layout.isFor(maxWidth);
  });
  if (known != entries_.end()) {
    entries_.splice(entries_.begin(), entries_, known);
  } else {
    entries_.emplace_front(text, style, maxWidth);
    if (entries_.size() > mostEntries) entries_.pop_back();
  }
  return entries_.front().layout;
}

}  // namespace valdrix::desktop
