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
inline constexpr double calloutFactor = 0.92;
inline constexpr double smallFactor = 0.85;

[[nodiscard]] QColor dimmedText(const QPalette& palette);
/// The accent colour, for text and symbols on the window or on a control.
[[nodiscard]] QColor accentInk(const QPalette& palette);
/// What stands a little out from the window: a group of rows.
[[nodiscard]] QColor groupFill(const QPalette& palette);
[[nodiscard]] QColor hairline(const QPalette& palette);
/// `share` of `over` on `under`, both opaque.
[[nodiscard]] QColor mixed(const QColor& under, const QColor& over, double share);
/// The groove of a switch that is off; 3 to 1 against its group.
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
