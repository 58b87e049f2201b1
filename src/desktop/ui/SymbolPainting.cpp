#include "desktop/ui/SymbolPainting.h"

#include <algorithm>

#include <QPainter>

#include "desktop/ui/QtPath.h"
#include "view/SymbolArt.h"

namespace valdrix::desktop {

void paintSymbol(QPainter& painter, std::string_view name, const QRectF& bounds,
                 const QColor& color, view::FontWeight weight) {
  const view::Symbol* symbol = view::symbolNamed(name, weight);
  if (!symbol) return;
  const double scale =
      std::min(bounds.width() / symbol->size.width, bounds.height() / symbol->size.height);
  const view::Point origin{bounds.center().x() - symbol->size.width * scale / 2,
                           bounds.center().y() - symbol->size.height * scale / 2};
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  for (const auto& part : symbol->parts) {
    const QPainterPath path = toQt(part.path.transformed(scale, origin));
    const auto cap = part.hasRoundCaps ? Qt::RoundCap : Qt::FlatCap;
    const auto join = part.hasRoundCaps ? Qt::RoundJoin : Qt::MiterJoin;
    if (part.isStroked)
      painter.strokePath(path, QPen(color, part.lineWidth * scale, Qt::SolidLine, cap, join));
    else
      painter.fillPath(path, color);
  }
  painter.restore();
}

}  // namespace valdrix::desktop
