#pragma once

#include "view/Path.h"

namespace valdrix {

/// The outline of the panel: square at the top, where it continues the camera housing, and rounded
/// at the bottom by quadratic curves whose control points are the rectangle's corners.
struct NotchShape {
  /// In points; held to 0 to half the shorter side.
  double bottomCornerRadius = 0;

  [[nodiscard]] double animatableData() const { return bottomCornerRadius; }
  void setAnimatableData(double radius) { bottomCornerRadius = radius; }

  [[nodiscard]] view::Path path(const view::Rect& rect) const;

  bool operator==(const NotchShape&) const = default;
};

}  // namespace valdrix
