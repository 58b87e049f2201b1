#include "view/PathParser.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <numbers>

namespace valdrix::view {

namespace {

struct Arc {
  Point radii;
  double rotation;  ///< radians
  bool isLarge;
  bool isSweeping;
  Point end;
};

Point rotated(Point p, double angle) {
  const double cosine = std::cos(angle);
  const double sine = std::sin(angle);
  return {cosine * p.x - sine * p.y, sine * p.x + cosine * p.y};
}

/// Adds an elliptical arc from `start` as cubic curves of a quarter turn at most. End points become
/// a centre and angles by the formulas of SVG's implementation notes ("Conversion from endpoint to
/// center parameterization").
void addArc(Path& path, Point start, const Arc& arc) {
  double rx = std::abs(arc.radii.x);
  double ry = std::abs(arc.radii.y);
  const Point half = rotated({(start.x - arc.end.x) / 2, (start.y - arc.end.y) / 2}, -arc.rotation);
  if (rx == 0 || ry == 0 || (half.x == 0 && half.y == 0)) return path.line(arc.end);

  const double reach = std::hypot(half.x / rx, half.y / ry);
  if (reach > 1) {  // too small to join the ends: grown until they do
    rx *= reach;
    ry *= reach;
  }
  const Point from{half.x / rx, half.y / ry};  // on the unit circle around the centre's opposite
  const double squared = from.x * from.x + from.y * from.y;
  const double shift =
      std::sqrt(std::max(0.0, 1 / squared - 1)) * (arc.isLarge == arc.isSweeping ? -1 : 1);
  const Point center{shift * from.y, -shift * from.x};
  const double first = std::atan2(from.y - center.y, from.x - center.x);
  double turn = std::atan2(-from.y - center.y, -from.x - center.x) - first;
  if (arc.isSweeping && turn < 0) turn += 2 * std::numbers::pi;
  if (!arc.isSweeping && turn > 0) turn -= 2 * std::numbers::pi;

  const auto place = [&](double x, double y) {
    const Point p = rotated({rx * (x + center.x), ry * (y + center.y)}, arc.rotation);
    return Point{p.x + (start.x + arc.end.x) / 2, p.y + (start.y + arc.end.y) / 2};
  };
  const int count =
      std::max(1, static_cast<int>(std::ceil(std::abs(turn) * 2 / std::numbers::pi - 1e-9)));
  const double step = turn / count;
  const double reachOut = 4.0 / 3 * std::tan(step / 4);
  for (int i = 0; i < count; ++i) {
    const double a = first + i * step;
    const double b = a + step;
    path.cubic(place(std::cos(a) - reachOut * std::sin(a), std::sin(a) + reachOut * std::cos(a)),
               place(std::cos(b) + reachOut * std::sin(b), std::sin(b) - reachOut * std::cos(b)),
               i + 1 == count ? arc.end : place(std::cos(b), std::sin(b)));
  }
}

class Parser {
 public:
  explicit Parser(std::string_view data) : rest_(data) {}

  std::optional<Path> parse() {
    char command = 0;
    for (skipSeparators(); !rest_.empty(); skipSeparators()) {
      if (isLetter(rest_.front())) {
        command = rest_.front();
        rest_.remove_prefix(1);
      } else if (command == 'Z' || command == 'z') {
        return std::nullopt;  // takes no numbers
      }
      if (path_.isEmpty() && command != 'M' && command != 'm') return std::nullopt;
      run(command);
      if (hasFailed_) return std::nullopt;
      // Further points of a move are lines.
      if (command == 'M') command = 'L';
      if (command == 'm') command = 'l';
    }
    return std::move(path_);
  }

 private:
  static bool isLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

  void skipSeparators() {
    rest_.remove_prefix(std::min(rest_.find_first_not_of(" ,\t\r\n"), rest_.size()));
  }

  double number() {
    skipSeparators();
    if (rest_.starts_with('+')) rest_.remove_prefix(1);
    double value = 0;
    const auto [end, error] = std::from_chars(rest_.data(), rest_.data() + rest_.size(), value);
    hasFailed_ = hasFailed_ || error != std::errc() || !std::isfinite(value);
    rest_.remove_prefix(static_cast<std::size_t>(end - rest_.data()));
    return value;
  }

  bool flag() {
    skipSeparators();
    const bool isFlag = rest_.starts_with('0') || rest_.starts_with('1');
    hasFailed_ = hasFailed_ || !isFlag;
    if (!isFlag) return false;
    const bool isSet = rest_.front() == '1';
    rest_.remove_prefix(1);
    return isSet;
  }

  Point point(bool isRelative) {
    const double x = number();
    const double y = number();
    return isRelative ? Point{current_.x + x, current_.y + y} : Point{x, y};
  }

  void run(char command) {
    const bool isRelative = command >= 'a';
    const char capital = isRelative ? static_cast<char>(command - 'a' + 'A') : command;
    const Point origin = isRelative ? current_ : Point{};
    switch (capital) {
      case 'M':
        current_ = start_ = point(isRelative);
        return path_.move(current_);
      case 'L':
        return lineTo(point(isRelative));
      case 'H':
        return lineTo({origin.x + number(), current_.y});
      case 'V':
        return lineTo({current_.x, origin.y + number()});
      case 'C': {
        const Point control1 = point(isRelative);
        const Point control2 = point(isRelative);
        current_ = point(isRelative);
        return path_.cubic(control1, control2, current_);
      }
      case 'Q': {
        const Point control = point(isRelative);
        current_ = point(isRelative);
        return path_.quad(control, current_);
      }
      case 'A':
        return arcTo(isRelative);
      case 'Z':
        current_ = start_;
        return path_.close();
      default:
        hasFailed_ = true;
    }
  }

  void lineTo(Point to) {
    current_ = to;
    path_.line(to);
  }

  void arcTo(bool isRelative) {
    Arc arc{};
    arc.radii = point(false);
    arc.rotation = number() * std::numbers::pi / 180;
    arc.isLarge = flag();
    arc.isSweeping = flag();
    arc.end = point(isRelative);
    if (!hasFailed_) addArc(path_, current_, arc);
    current_ = arc.end;
  }

  std::string_view rest_;
  Path path_;
  Point current_;
  Point start_;
  bool hasFailed_ = false;
};

}  // namespace

std::optional<Path> parsePath(std::string_view data) { return Parser(data).parse(); }

}  // namespace valdrix::view
