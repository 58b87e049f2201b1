#pragma once

#include <string_view>

#include <QColor>
#include <QIcon>
#include <QRectF>

#include "view/Font.h"

class QPainter;

namespace valdrix::desktop {

/// Paints a drawn symbol as large as it fits in `bounds`, in their middle. A name that is not drawn
/// paints nothing.
void paintSymbol(QPainter& painter, std::string_view name, const QRectF& bounds,
                 const QColor& color, view::FontWeight weight = view::FontWeight::regular);

/// A drawn symbol as an icon, crisp at any size and device pixel ratio. Greyed out where the icon
/// is shown as disabled. A name that is not drawn gives a null icon.
[[nodiscard]] QIcon symbolIcon(std::string_view name, const QColor& color,
                               view::FontWeight weight = view::FontWeight::regular);

}  // namespace valdrix::desktop
