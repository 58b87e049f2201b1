#include "desktop/ui/QtCanvas.h"

#include <algorithm>

#include <QPainter>
#include <QPainterPath>

#include "desktop/ui/QtTextMetrics.h"

namespace valdrix::desktop {

namespace {

QPointF toQt(view::Point point) { return {point.x, point.y}; }

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

}  // namespace

QtCanvas::QtCanvas(QPainter& painter, const QtTextMetrics& metrics)
    : painter_(painter), metrics_(metrics) {
  painter_.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
}

void QtCanvas::fill(const view::Path& path, const view::Color& color) {
  if (color.alpha > 0) painter_.fillPath(toQt(path), toQt(color));
}

void QtCanvas::stroke(const view::Path& path, const view::Color& color, double width,
                      bool hasRoundCaps) {
  // A pen of width 0 would be Qt's hairline.
  if (width <= 0 || color.alpha <= 0) return;
  painter_.strokePath(
      toQt(path), QPen(toQt(color), width, Qt::SolidLine, hasRoundCaps ? Qt::RoundCap : Qt::FlatCap,
                       hasRoundCaps ? Qt::RoundJoin : Qt::MiterJoin));
}

void QtCanvas::drawText(std::string_view text, const view::TextStyle& style,
                        const view::Rect& bounds, const view::Color& color) {
  if (color.alpha <= 0) return;
  // Bounds that were put on whole pixels may be that much narrower than the text they were measured
  // for, which is no reason to cut it.
  constexpr double roundingSlack = 1;
  painter_.setPen(toQt(color));
  metrics_.layout(text, style, bounds.width + roundingSlack).draw(painter_, {bounds.x, bounds.y});
}

void QtCanvas::pushClip(const view::Path& path) {
  painter_.save();
  painter_.setClipPath(toQt(path), Qt::IntersectClip);
}

void QtCanvas::popClip() { painter_.restore(); }

}  // namespace valdrix::desktop
