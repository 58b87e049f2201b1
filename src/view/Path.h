#pragma once

#include <array>
#include <string_view>
#include <utility>
#include <vector>

#include "view/Geometry.h"

namespace valdrix::view {

/// An outline made of straight lines and Bézier curves, in points, y growing downwards.
class Path {
 public:
  enum class Verb { move, line, quad, cubic, close };
  /// One step of the outline. A line ends in `points[0]`; a quadratic curve has its control point
  /// before its end, a cubic one both of its control points.
  struct Element {
    Verb verb;
    std::array<Point, 3> points;
    bool operator==(const Element&) const = default;
  };

  void move(Point to);
  void line(Point to);
  void quad(Point control, Point to);
  void cubic(Point control1, Point control2, Point to);
  void close();

  [[nodiscard]] const std::vector<Element>& elements() const { return elements_; }
  [[nodiscard]] bool isEmpty() const { return elements_.empty(); }
  /// The smallest rectangle around all end and control points.
  [[nodiscard]] Rect bounds() const;
  /// The widest rectangle inside, where it is a convex outline with straight upright sides: from
  /// one side to the other, as far as both are straight. Empty where it is none.
  [[nodiscard]] Rect band() const;
  /// The path scaled by `scale` and then moved by `offset`.
  [[nodiscard]] Path transformed(double scale, Point offset) const;

  [[nodiscard]] static Path rectangle(const Rect& rect);
  /// A rectangle with corners of `radius`, held to half the shorter side. Continuous corners blend
  /// into the sides instead of starting as a circular arc.
  [[nodiscard]] static Path roundedRectangle(const Rect& rect, double radius, bool isContinuous);
  [[nodiscard]] static Path ellipse(const Rect& rect);

  bool operator==(const Path&) const = default;

 private:
  [[nodiscard]] std::vector<Point> polygon() const;
  [[nodiscard]] std::pair<double, double> uprightSide(double x) const;

  std::vector<Element> elements_;
};

}  // namespace valdrix::view
