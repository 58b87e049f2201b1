#include "desktop/screens/PathBounds.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <numbers>
#include <vector>

namespace valdrix::desktop {

namespace {

using view::Point;

/// Reads commands and numbers off the front of a path.
class Scanner {
 public:
  explicit Scanner(std::string_view text) : text_(text) { skipSpace(); }

  [[nodiscard]] bool isAtEnd() const { return text_.empty(); }
  [[nodiscard]] bool isAtCommand() const {
    return !isAtEnd() && std::string_view("MmLlHhVvCcSsQqTtAaZz").find(text_[0]) != text_.npos;
  }
  char command() {
    const char command = text_[0];
    text_.remove_prefix(1);
    skipSpace();
    return command;
  }
  std::optional<double> number() {
    if (text_.starts_with('+')) text_.remove_prefix(1);
    double value = 0;
    const auto [end, error] = std::from_chars(text_.data(), text_.data() + text_.size(), value);
    if (error != std::errc() || !std::isfinite(value)) return std::nullopt;
    text_.remove_prefix(static_cast<std::size_t>(end - text_.data()));
    skipSpace();
    return value;
  }
  /// One digit; flags of an arc may stand without anything between them.
  std::optional<double> flag() {
    if (isAtEnd() || (text_[0] != '0' && text_[0] != '1')) return std::nullopt;
    const double value = text_[0] - '0';
    text_.remove_prefix(1);
    skipSpace();
    return value;
  }

 private:
  void skipSpace() {
    const auto next = text_.find_first_not_of(" \t\r\n,");
    text_.remove_prefix(next == text_.npos ? text_.size() : next);
  }

  std::string_view text_;
};

class Bounds {
 public:
  void add(Point point) {
    left_ = std::min(left_, point.x);
    top_ = std::min(top_, point.y);
    right_ = std::max(right_, point.x);
    bottom_ = std::max(bottom_, point.y);
  }
  [[nodiscard]] std::optional<view::Rect> rectangle() const {
    if (!(left_ < right_ && top_ < bottom_)) return std::nullopt;
    return view::Rect{left_, top_, right_ - left_, bottom_ - top_};
  }

 private:
  double left_ = 1e300, top_ = 1e300, right_ = -1e300, bottom_ = -1e300;
};

struct Arc {
  double radiusX, radiusY, rotation;
  bool isLarge, isPositive;
  Point end;
};

// Walks along an elliptical arc, by way of its centre as SVG 1.1 derives it in appendix F.6.5.
void addArc(Bounds& bounds, Point from, const Arc& arc) {
  double rx = std::abs(arc.radiusX);
  double ry = std::abs(arc.radiusY);
  if (rx == 0 || ry == 0 || from == arc.end) return;
  const double turn = arc.rotation * std::numbers::pi / 180;
  const double c = std::cos(turn), s = std::sin(turn);
  const double dx = (from.x - arc.end.x) / 2, dy = (from.y - arc.end.y) / 2;
  const double x = c * dx + s * dy, y = c * dy - s * dx;
  const double stretch = x * x / (rx * rx) + y * y / (ry * ry);
  if (stretch > 1) {
    rx *= std::sqrt(stretch);
    ry *= std::sqrt(stretch);
  }
  const double under = rx * rx * y * y + ry * ry * x * x;
  const double factor = (arc.isLarge == arc.isPositive ? -1 : 1) *
                        std::sqrt(std::max(0.0, rx * rx * ry * ry / under - 1));
  const double cx = factor * rx * y / ry, cy = -factor * ry * x / rx;
  const Point centre{c * cx - s * cy + (from.x + arc.end.x) / 2,
                     s * cx + c * cy + (from.y + arc.end.y) / 2};
  const double start = std::atan2((y - cy) / ry, (x - cx) / rx);
  double sweep = std::atan2((-y - cy) / ry, (-x - cx) / rx) - start;
  if (arc.isPositive && sweep < 0) sweep += 2 * std::numbers::pi;
  if (!arc.isPositive && sweep > 0) sweep -= 2 * std::numbers::pi;
  constexpr int steps = 256;
  for (int i = 0; i <= steps; ++i) {
    const double angle = start + sweep * i / steps;
    const double ex = rx * std::cos(angle), ey = ry * std::sin(angle);
    bounds.add({centre.x + c * ex - s * ey, centre.y + s * ex + c * ey});
  }
}

/// Follows the commands of a path.
class Pen {
 public:
  explicit Pen(Bounds& bounds) : bounds_(bounds) {}

  /// Runs `command` once with the numbers at the front of `scanner`. False: they are malformed.
  bool run(char command, Scanner& scanner) {
    const bool isRelative = command >= 'a';
    const Point origin = isRelative ? at_ : Point{};
    switch (command & ~0x20) {
      case 'M':
        if (!points<1>(scanner, origin, false)) return false;
        start_ = at_;
        return true;
      case 'L':
      case 'T':
        return points<1>(scanner, origin, true);
      case 'S':
      case 'Q':
        return points<2>(scanner, origin, true);
      case 'C':
        return points<3>(scanner, origin, true);
      case 'H':
        return straight(scanner.number(), at_.x, origin.x);
      case 'V':
        return straight(scanner.number(), at_.y, origin.y);
      case 'A':
        return arc(scanner, origin);
      default:
        at_ = start_;
        return true;
    }
  }

 private:
  template <int count>
  bool points(Scanner& scanner, Point origin, bool draws) {
    if (draws) bounds_.add(at_);
    for (int i = 0; i < count; ++i) {
      const auto x = scanner.number();
      const auto y = x ? scanner.number() : std::nullopt;
      if (!y) return false;
      at_ = {origin.x + *x, origin.y + *y};
      if (draws) bounds_.add(at_);
    }
    return true;
  }

  bool straight(std::optional<double> number, double& coordinate, double origin) {
    if (!number) return false;
    bounds_.add(at_);
    coordinate = origin + *number;
    bounds_.add(at_);
    return true;
  }

  bool arc(Scanner& scanner, Point origin) {
    const auto rx = scanner.number(), ry = rx ? scanner.number() : rx;
    const auto turn = ry ? scanner.number() : ry;
    const auto large = turn ? scanner.flag() : turn, positive = large ? scanner.flag() : large;
    const auto x = positive ? scanner.number() : positive, y = x ? scanner.number() : x;
    if (!y) return false;
    const Point end{origin.x + *x, origin.y + *y};
    addArc(bounds_, at_, {*rx, *ry, *turn, *large != 0, *positive != 0, end});
    bounds_.add(at_);
    bounds_.add(end);
    at_ = end;
    return true;
  }

  Bounds& bounds_;
  Point at_;
  Point start_;
};

}  // namespace

std::optional<view::Rect> pathBounds(std::string_view path) {
  Scanner scanner(path);
  Bounds bounds;
  Pen pen(bounds);
  while (!scanner.isAtEnd()) {
    if (!scanner.isAtCommand()) return std::nullopt;
    char command = scanner.command();
    do {
      if (!pen.run(command, scanner)) return std::nullopt;
      // Further pairs after a move are lines.
      if (command == 'M') command = 'L';
      if (command == 'm') command = 'l';
    } while ((command & ~0x20) != 'Z' && !scanner.isAtEnd() && !scanner.isAtCommand());
  }
  return bounds.rectangle();
}

}  // namespace valdrix::desktop
