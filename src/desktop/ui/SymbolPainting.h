#pragma once

#include <string_view>

#include <QColor>
#include <QRectF>

#include "view/Font.h"

class QPainter;

namespace valdrix::desktop {

/// Paints a drawn symbol as large as it fits in `bounds`, in their middle. A name that is not drawn
/// paints nothing.
void paintSymbol(QPainter& painter, std::string_view name, const QRectF& bounds,
                 const QColor& color, view::FontWeight weight = view::FontWeight::regular);

}  // namespace valdrix::desktop
