#include "desktop/x11/AlphaShape.h"

#include <algorithm>

namespace valdrix::desktop {

AlphaShape::Row AlphaShape::read(const QImage& image, int y) {
  // Half covered counts as shown, which cuts curves where their edge runs.
  const auto isShown = [](QRgb pixel) { return qAlpha(pixel) >= 128; };
  const auto* pixels = reinterpret_cast<const QRgb*>(image.constScanLine(y));
  const auto* end = pixels + image.width();
  Row row;
  for (const auto* at = std::find_if(pixels, end, isShown); at != end;) {
    const auto* right = std::find_if_not(at, end, isShown);
    row.push_back({static_cast<int>(at - pixels), static_cast<int>(right - pixels)});
    at = std::find_if(right, end, isShown);
  }
  return row;
}

bool AlphaShape::update(const QImage& image, int top, int bottom) {
  const auto height = static_cast<std::size_t>(image.height());
  bool isDifferent = rows_.size() != height;
  rows_.resize(height);
  for (int y = std::max(0, top); y < std::min(bottom, image.height()); ++y) {
    auto row = read(image, y);
    auto& known = rows_[static_cast<std::size_t>(y)];
    if (row == known) continue;
    known = std::move(row);
    isDifferent = true;
  }
  return isDifferent;
}

std::vector<QRect> AlphaShape::rectangles() const {
  std::vector<QRect> rectangles;
  for (std::size_t top = 0; top < rows_.size();) {
    std::size_t bottom = top + 1;
    while (bottom < rows_.size() && rows_[bottom] == rows_[top]) ++bottom;
    for (const Span& span : rows_[top])
      rectangles.emplace_back(span.left, static_cast<int>(top), span.right - span.left,
                              static_cast<int>(bottom - top));
    top = bottom;
  }
  return rectangles;
}

}  // namespace valdrix::desktop
