#include "desktop/ui/QtCanvas.h"

#include <QPainter>

#include "desktop/ui/QtPath.h"
#include "desktop/ui/QtTextMetrics.h"

namespace valdrix::desktop {

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
