#include "view/Damage.h"

namespace valdrix::view {

namespace {

/// What is left out must be worth drawing in several parts, in square points.
constexpr double leastSaving = 64.0 * 64;
constexpr std::size_t mostEdges = 8;

}  // namespace

void Damage::addAround(const Rect& same, const Rect& part) {
  const Rect inner = same.intersected(part);
  if (inner.width * inner.height < leastSaving || edges_.size() >= mostEdges) return add(part);
  const double right = part.maxX() - inner.maxX();
  for (const Rect& edge : {Rect{part.x, part.y, part.width, inner.y - part.y},
                           Rect{part.x, inner.maxY(), part.width, part.maxY() - inner.maxY()},
                           Rect{part.x, inner.y, inner.x - part.x, inner.height},
                           Rect{inner.maxX(), inner.y, right, inner.height}})
    if (!edge.isEmpty()) edges_.push_back(edge);
}

Rect Damage::bounds() const {
  Rect all = rest_;
  for (const auto& edge : edges_) all = all.united(edge);
  return all;
}

std::vector<Rect> Damage::rectangles() const {
  std::vector<Rect> all = edges_;
  if (!rest_.isEmpty()) all.push_back(rest_);
  return all;
}

}  // namespace valdrix::view
