#pragma once

#include <vector>

#include "view/Geometry.h"

namespace valdrix::view {

/// Which parts of a picture look different from the one before.
class Damage {
 public:
  /// Everything in a rectangle may.
  void add(const Rect& part) { rest_ = rest_.united(part); }
  /// The same, but for `same` inside of it.
  void addAround(const Rect& same, const Rect& part);

  [[nodiscard]] bool isEmpty() const { return bounds().isEmpty(); }
  [[nodiscard]] Rect bounds() const;
  /// A few rectangles outside of which nothing does; they may overlap.
  [[nodiscard]] std::vector<Rect> rectangles() const;

 private:
  Rect rest_;
  std::vector<Rect> edges_;
};

}  // namespace valdrix::view
