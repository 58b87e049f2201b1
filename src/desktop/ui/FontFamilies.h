#pragma once

#include <QFont>

#include "view/Font.h"

namespace valdrix::desktop {

/// Which families of type stand for the view layer's fonts.
class FontFamilies {
 public:
  /// The font to lay out and draw with, whatever resolution the display claims; unhinted and grey,
  /// so that text measures the same at every scale and may be drawn on a transparent surface. Qt
  /// rounds sizes to whole pixels: it has `pixelSize()` logical pixels to the em, and the rest is
  /// for the caller to scale.
  [[nodiscard]] static QFont font(const view::Font& font);
};

}  // namespace valdrix::desktop
