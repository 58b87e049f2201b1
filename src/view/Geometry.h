#pragma once

#include <algorithm>
#include <limits>
#include <optional>

namespace valdrix::view {

/// A position in points. Inside views y grows downwards; screen coordinates say otherwise where
/// they appear.
struct Point {
  double x = 0;
  double y = 0;
  bool operator==(const Point&) const = default;
};

/// Width and height in points.
struct Size {
  double width = 0;
  double height = 0;
  bool operator==(const Size&) const = default;
};

/// A rectangle in points, from its origin (the corner with the smallest coordinates).
struct Rect {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;

  [[nodiscard]] double minX() const { return x; }
  [[nodiscard]] double minY() const { return y; }
  [[nodiscard]] double midX() const { return x + width / 2; }
  [[nodiscard]] double midY() const { return y + height / 2; }
  [[nodiscard]] double maxX() const { return x + width; }
  [[nodiscard]] double maxY() const { return y + height; }
  [[nodiscard]] Point origin() const { return {x, y}; }
  [[nodiscard]] Size size() const { return {width, height}; }
  [[nodiscard]] bool isEmpty() const { return width <= 0 || height <= 0; }

  /// Whether `p` lies inside or on any of the four edges.
  [[nodiscard]] bool contains(Point p) const {
    return minX() <= p.x && p.x <= maxX() && minY() <= p.y && p.y <= maxY();
  }

  /// The smallest rectangle around both; an empty one adds nothing.
  [[nodiscard]] Rect united(const Rect& other) const {
    if (isEmpty()) return other;
    if (other.isEmpty()) return *this;
    const double left = std::min(minX(), other.minX());
    const double top = std::min(minY(), other.minY());
    return {left, top, std::max(maxX(), other.maxX()) - left, std::max(maxY(), other.maxY()) - top};
  }

  /// The common part, empty when there is none.
  [[nodiscard]] Rect intersected(const Rect& other) const {
    const double left = std::max(minX(), other.minX());
    const double top = std::max(minY(), other.minY());
    return {left, top, std::max(0.0, std::min(maxX(), other.maxX()) - left),
            std::max(0.0, std::min(maxY(), other.maxY()) - top)};
  }

  /// Grown by `by` points on every side.
  [[nodiscard]] Rect outset(double by) const {
    return {x - by, y - by, width + 2 * by, height + 2 * by};
  }

  bool operator==(const Rect&) const = default;
};

/// Distances from the four sides, in points.
struct EdgeInsets {
  double top = 0;
  double leading = 0;
  double bottom = 0;
  double trailing = 0;
  bool operator==(const EdgeInsets&) const = default;
};

enum class HorizontalAlignment { leading, center, trailing };
enum class VerticalAlignment { top, center, bottom };

/// Where a child stands in a larger area, or children beside each other.
struct Alignment {
  HorizontalAlignment horizontal = HorizontalAlignment::center;
  VerticalAlignment vertical = VerticalAlignment::center;
  bool operator==(const Alignment&) const = default;

  static const Alignment center, top, topLeading, leading, trailing;
};

inline constexpr Alignment Alignment::center{};
inline constexpr Alignment Alignment::top{HorizontalAlignment::center, VerticalAlignment::top};
inline constexpr Alignment Alignment::topLeading{HorizontalAlignment::leading,
                                                 VerticalAlignment::top};
inline constexpr Alignment Alignment::leading{HorizontalAlignment::leading,
                                              VerticalAlignment::center};
inline constexpr Alignment Alignment::trailing{HorizontalAlignment::trailing,
                                               VerticalAlignment::center};

/// The size that a parent offers a child. A missing side asks for the child's ideal extent there,
/// an infinite one for its largest.
struct ProposedSize {
  std::optional<double> width;
  std::optional<double> height;

  static constexpr double infinity = std::numeric_limits<double>::infinity();
  [[nodiscard]] static ProposedSize of(Size size) { return {size.width, size.height}; }
  bool operator==(const ProposedSize&) const = default;
};

}  // namespace valdrix::view
