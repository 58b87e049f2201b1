#include "desktop/ui/QtPath.h"

#include <algorithm>

namespace valdrix::desktop {

namespace {
QPointF toQt(view::Point point) { return {point.x, point.y}; }
}  // namespace

QColor toQt(const view::Color& color) {
  const auto component = [](double value) {
    return static_cast<float>(std::clamp(value, 0.0, 1.0));
  };
  return QColor::fromRgbF(component(color.red), component(color.green), component(color.blue),
                          component(color.alpha));
}

QPainterPath toQt(const view::Path& path) {
  QPainterPath result;
  result.setFillRule(Qt::WindingFill);
  for (const auto& [verb, points] : path.elements()) {
    switch (verb) {
      case view::Path::Verb::move:
        result.moveTo(toQt(points[0]));
        break;
      case view::Path::Verb::line:
        result.lineTo(toQt(points[0]));
        break;
      case view::Path::Verb::quad:
        result.quadTo(toQt(points[0]), toQt(points[1]));
        break;
      case view::Path::Verb::cubic:
        result.cubicTo(toQt(points[0]), toQt(points[1]), toQt(points[2]));
        break;
      case view::Path::Verb::close:
        result.closeSubpath();
        break;
    }
  }
  return result;
}

}  // namespace valdrix::desktop
