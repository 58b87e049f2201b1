#include "view/Path.h"

#include <algorithm>
#include <limits>

namespace valdrix::view {

namespace {

/// How far a cubic's control points stand from the ends of a quarter circle of radius 1: the usual
/// 4/3 · (√2 − 1), off by less than 0.03 %.
constexpr double circleControl = 0.5522847498;
/// Continuous corners start this much further out than circular ones, where the side allows it.
constexpr double continuousReach = 1.2;

std::size_t pointCount(Path::Verb verb) {
  switch (verb) {
    case Path::Verb::move:
    case Path::Verb::line:
      return 1;
    case Path::Verb::quad:
      return 2;
    case Path::Verb::cubic:
      return 3;
    case Path::Verb::close:
      return 0;
  }
  return 0;
}

/// Whether a closed outline turns to one side only.
bool isConvex(const std::vector<Point>& polygon) {
  constexpr double tolerance = 1e-9;
  bool turnsLeft = false;
  bool turnsRight = false;
  const std::size_t count = polygon.size();
  for (std::size_t i = 0; i < count; ++i) {
    const Point a = polygon[i];
    const Point b = polygon[(i + 1) % count];
    const Point c = polygon[(i + 2) % count];
    const double turn = (b.x - a.x) * (c.y - b.y) - (b.y - a.y) * (c.x - b.x);
    turnsLeft = turnsLeft || turn < -tolerance;
    turnsRight = turnsRight || turn > tolerance;
  }
  return turnsLeft != turnsRight;
}

}  // namespace

void Path::move(Point to) {
  // Hardly an outline has fewer steps, and growing to them would take several allocations.
  if (elements_.empty()) elements_.reserve(10);
  elements_.push_back({Verb::move, {to}});
}
void Path::line(Point to) { elements_.push_back({Verb::line, {to}}); }
void Path::quad(Point control, Point to) { elements_.push_back({Verb::quad, {control, to}}); }
void Path::cubic(Point control1, Point control2, Point to) {
  elements_.push_back({Verb::cubic, {control1, control2, to}});
}
void Path::close() { elements_.push_back({Verb::close, {}}); }

Rect Path::bounds() const {
  bool isFirst = true;
  double left = 0;
  double top = 0;
  double right = 0;
  double bottom = 0;
  for (const auto& element : elements_) {
    for (std::size_t i = 0; i < pointCount(element.verb); ++i) {
      const auto [x, y] = element.points[i];
      left = isFirst ? x : std::min(left, x);
      top = isFirst ? y : std::min(top, y);
      right = isFirst ? x : std::max(right, x);
      bottom = isFirst ? y : std::max(bottom, y);
      isFirst = false;
    }
  }
  return {left, top, right - left, bottom - top};
}

// All end and control points, none twice in a row; of several outlines, none.
std::vector<Point> Path::polygon() const {
  std::vector<Point> points;
  for (const auto& element : elements_) {
    if (element.verb == Verb::move && !points.empty()) return {};
    for (std::size_t i = 0; i < pointCount(element.verb); ++i)
      if (points.empty() || points.back() != element.points[i]) points.push_back(element.points[i]);
  }
  while (points.size() > 1 && points.back() == points.front()) points.pop_back();
  return points;
}

// How far the outline runs straight along `x`: from the first to the second.
std::pair<double, double> Path::uprightSide(double x) const {
  constexpr double infinity = std::numeric_limits<double>::infinity();
  std::pair side{infinity, -infinity};
  Point start;
  Point from;
  for (const auto& element : elements_) {
    const bool isClose = element.verb == Verb::close;
    const Point to = isClose ? start : element.points[pointCount(element.verb) - 1];
    if ((isClose || element.verb == Verb::line) && from.x == x && to.x == x)
      side = {std::min({side.first, from.y, to.y}), std::max({side.second, from.y, to.y})};
    if (element.verb == Verb::move) start = to;
    from = to;
  }
  return side;
}

// A convex outline lies on the inner side of both, and all between them is inside.
Rect Path::band() const {
  const auto points = polygon();
  if (!isConvex(points)) return {};
  const auto [left, right] =
      std::minmax_element(points.begin(), points.end(), [](Point a, Point b) { return a.x < b.x; });
  const auto leftSide = uprightSide(left->x);
  const auto rightSide = uprightSide(right->x);
  const double top = std::max(leftSide.first, rightSide.first);
  const double bottom = std::min(leftSide.second, rightSide.second);
  return bottom > top ? Rect{left->x, top, right->x - left->x, bottom - top} : Rect{};
}

Path Path::transformed(double scale, Point offset) const {
  Path result = *this;
  for (auto& element : result.elements_)
    for (auto& point : element.points)
      point = {point.x * scale + offset.x, point.y * scale + offset.y};
  return result;
}

Path Path::rectangle(const Rect& rect) {
  Path path;
  path.move({rect.minX(), rect.minY()});
  path.line({rect.maxX(), rect.minY()});
  path.line({rect.maxX(), rect.maxY()});
  path.line({rect.minX(), rect.maxY()});
  path.close();
  return path;
}

Path Path::roundedRectangle(const Rect& rect, double radius, bool isContinuous) {
  const double half = std::min(rect.width, rect.height) / 2;
  const double r = std::clamp(radius, 0.0, std::max(0.0, half));
  if (r <= 0) return rectangle(rect);
  // The curve begins `reach` before the corner; its control points stay where those of the circle
  // are, measured from the corner, so that a continuous corner only eases in and out more softly.
  const double reach = isContinuous ? std::min(r * continuousReach, half) : r;
  const double control = r * (1 - circleControl);
  const double left = rect.minX();
  const double top = rect.minY();
  const double right = rect.maxX();
  const double bottom = rect.maxY();
  Path path;
  path.move({left + reach, top});
  path.line({right - reach, top});
  path.cubic({right - control, top}, {right, top + control}, {right, top + reach});
  path.line({right, bottom - reach});
  path.cubic({right, bottom - control}, {right - control, bottom}, {right - reach, bottom});
  path.line({left + reach, bottom});
  path.cubic({left + control, bottom}, {left, bottom - control}, {left, bottom - reach});
  path.line({left, top + reach});
  path.cubic({left, top + control}, {left + control, top}, {left + reach, top});
  path.close();
  return path;
}

Path Path::ellipse(const Rect& rect) {
  const double dx = rect.width / 2 * circleControl;
  const double dy = rect.height / 2 * circleControl;
  Path path;
  path.move({rect.midX(), rect.minY()});
  path.cubic({rect.midX() + dx, rect.minY()}, {rect.maxX(), rect.midY() - dy},
             {rect.maxX(), rect.midY()});
  path.cubic({rect.maxX(), rect.midY() + dy}, {rect.midX() + dx, rect.maxY()},
             {rect.midX(), rect.maxY()});
  path.cubic({rect.midX() - dx, rect.maxY()}, {rect.minX(), rect.midY() + dy},
             {rect.minX(), rect.midY()});
  path.cubic({rect.minX(), rect.midY() - dy}, {rect.midX() - dx, rect.minY()},
             {rect.midX(), rect.minY()});
  path.close();
  return path;
}

}  // namespace valdrix::view
