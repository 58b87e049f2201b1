#include "notch/NotchShape.h"

#include <algorithm>

namespace valdrix {

view::Path NotchShape::path(const view::Rect& rect) const {
  const double r =
      std::max(0.0, std::min(std::min(rect.width, rect.height) * 0.5, bottomCornerRadius));
  view::Path path;
  path.move({rect.minX(), rect.minY()});
  path.line({rect.maxX(), rect.minY()});
  path.line({rect.maxX(), rect.maxY() - r});
  path.quad({rect.maxX(), rect.maxY()}, {rect.maxX() - r, rect.maxY()});
  path.line({rect.minX() + r, rect.maxY()});
  path.quad({rect.minX(), rect.maxY()}, {rect.minX(), rect.maxY() - r});
  path.close();
  return path;
}

}  // namespace valdrix
