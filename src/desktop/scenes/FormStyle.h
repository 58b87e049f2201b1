#pragma once

#include <QColor>
#include <QFont>
#include <QPalette>
#include <QRectF>

class QPainter;
class QWidget;

/// The look of forms, made from the desktop's own palette and font, so that it follows them.
namespace valdrix::desktop::formStyle {

/// Widths and gaps, in points.
inline constexpr int windowMargin = 20;
inline constexpr int groupInset = 12;
inline constexpr int rowHeight = 40;
inline constexpr int rowPadding = 8;
inline constexpr double groupRadius = 10;

/// The application's font, `factor` times as large.
[[nodiscard]] QFont font(double factor = 1, QFont::Weight weight = QFont::Normal);
/// The desktop's font of equal widths, `factor` times as large as the application's.
[[nodiscard]] QFont codeFont(double factor = 1);
inline constexpr double calloutFactor = 0.92;
inline constexpr double smallFactor = 0.85;

[[nodiscard]] QColor dimmedText(const QPalette& palette);
/// The accent colour, for text on it in the palette's highlighted colour.
[[nodiscard]] QColor accentFill(const QPalette& palette);
/// The accent colour, for text and symbols on the window or on a control.
[[nodiscard]] QColor accentInk(const QPalette& palette);
/// What stands a little out from the window: a group of rows.
[[nodiscard]] QColor groupFill(const QPalette& palette);
/// A symbol of that colour on a group of rows.
[[nodiscard]] QColor symbolInk(const QPalette& palette, const QColor& color);
[[nodiscard]] QColor hairline(const QPalette& palette);
/// Whether texts are lighter than what they lie on.
[[nodiscard]] bool isDark(const QPalette& palette);
/// How far two opaque colours are apart, from 1 (the same) to 21 (black and white), as the Web
/// Content Accessibility Guidelines define it.
[[nodiscard]] double contrast(const QColor& a, const QColor& b);
/// What texts, and what symbols and controls, need at least.
inline constexpr double textContrast = 4.5;
inline constexpr double shapeContrast = 3;
/// `color`, with as much of `towards` as it needs to stand out from `ground` by that much, or all
/// of it.
[[nodiscard]] QColor distinct(const QColor& color, const QColor& ground, double least,
                              const QColor& towards);
/// `share` of `over` on `under`, both opaque.
[[nodiscard]] QColor mixed(const QColor& under, const QColor& over, double share);
/// The groove of a switch that is off.
[[nodiscard]] QColor switchTrack(const QPalette& palette);
/// What can be pressed, by how strongly it stands out from its group: at rest, under the pointer.
[[nodiscard]] QColor controlFill(const QPalette& palette, bool isHovered);

/// Whether to show where the keyboard's input goes: the focus came by a key.
[[nodiscard]] bool showsFocus(const QWidget& widget);
/// A ring in the accent colour, its outer edge on `bounds`.
void paintFocusRing(QPainter& painter, const QPalette& palette, const QRectF& bounds,
                    double radius);
/// A line one device pixel thick from left to right at the top of `bounds`.
void paintHairline(QPainter& painter, const QPalette& palette, const QRectF& bounds);

}  // namespace valdrix::desktop::formStyle
