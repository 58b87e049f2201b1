#pragma once

#include <array>
#include <string_view>

#include <QTextLayout>

#include "view/Font.h"
#include "view/Geometry.h"

class QPainter;

namespace valdrix::desktop {

/// A piece of text broken into lines. Measuring and drawing both go through this, so that they
/// cannot disagree.
class QtTextLayout {
 public:
  /// `text` in UTF-8, at most `maxWidth` points wide (infinity: one line per paragraph).
  QtTextLayout(std::string_view text, const view::TextStyle& style, double maxWidth);

  /// The width of the longest line, at most `maxWidth`; as many line heights as there are lines.
  [[nodiscard]] view::Size size() const { return size_; }
  /// Whether laying out in `maxWidth` would give this same layout.
  [[nodiscard]] bool isFor(double maxWidth) const;
  /// Draws in the painter's pen colour, the first line's top left corner at `topLeft`.
  void draw(QPainter& painter, view::Point topLeft) const;

 private:
  void widenDigits();
  void setText(const QString& text);
  void breakLines(double width, QTextOption::WrapMode mode, int lineLimit);
  void elide(const QString& text, double width);
  void stackLines();
  [[nodiscard]] bool holdsWholeText() const;
  [[nodiscard]] double pad(QChar character) const;

  view::TextStyle style_;
  QTextLayout layout_;
  double scale_ = 1;     ///< points per unit of `layout_`
  double tracking_ = 0;  ///< in units of `layout_`
  /// In units of `layout_`: what each digit lacks, on either side, to stand in the middle of the
  /// widest one's cell.
  std::array<double, 10> digitPads_{};
  double maxWidth_;          ///< in points
  double naturalWidth_ = 0;  ///< in points
  view::Size size_;
  bool isNatural_ = false;  ///< nothing was broken or cut for want of width
};

}  // namespace valdrix::desktop
