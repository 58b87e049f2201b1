#pragma once

#include <QColor>
#include <QPainterPath>

#include "view/Color.h"
#include "view/Path.h"

namespace valdrix::desktop {

[[nodiscard]] QColor toQt(const view::Color& color);
/// Filled by the non-zero winding rule.
[[nodiscard]] QPainterPath toQt(const view::Path& path);

}  // namespace valdrix::desktop
