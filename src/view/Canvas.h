#pragma once

#include <string>
#include <string_view>

#include "view/Color.h"
#include "view/Font.h"
#include "view/Geometry.h"
#include "view/Path.h"

namespace valdrix::view {

/// Measures text for layout. An adapter measures with the very fonts that its `Canvas` draws with.
class TextMetrics {
 public:
  virtual ~TextMetrics() = default;

  /// The size in points that `text` (UTF-8) takes when it may be at most `maxWidth` points wide
  /// (infinity: one line per paragraph). The width is that of the longest line, never more than
  /// `maxWidth`; the height is a whole number of line heights.
  [[nodiscard]] virtual Size measure(std::string_view text, const TextStyle& style,
                                     double maxWidth) const = 0;
};

/// Where a view tree is drawn: anti-aliased, in points, source over destination.
class Canvas {
 public:
  virtual ~Canvas() = default;

  virtual void fill(const Path& path, const Color& color) = 0;
  /// Strokes with the line centred on the path; `width` in points.
  virtual void stroke(const Path& path, const Color& color, double width, bool hasRoundCaps) = 0;
  /// Draws `text` with its first line at the top of `bounds` and every line at its leading edge.
  virtual void drawText(std::string_view text, const TextStyle& style, const Rect& bounds,
                        const Color& color) = 0;
  /// Limits everything up to the matching `popClip` to the inside of `path` as well.
  virtual void pushClip(const Path& path) = 0;
  virtual void popClip() = 0;
};

}  // namespace valdrix::view
