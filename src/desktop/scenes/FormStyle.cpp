#include "desktop/scenes/FormStyle.h"

#include <cmath>

#include <QApplication>
#include <QPainter>
#include <QWidget>

namespace valdrix::desktop::formStyle {

namespace {

constexpr double ringWidth = 2;

/// The window's colour with so much of its text's.
QColor shade(const QPalette& palette, double share) {
  return mixed(palette.color(QPalette::Window), palette.color(QPalette::WindowText), share);
}

bool isDark(const QPalette& palette) {
  return palette.color(QPalette::Window).lightnessF() <
         palette.color(QPalette::WindowText).lightnessF();
}

}  // namespace

QFont font(double factor, QFont::Weight weight) {
  QFont result = QApplication::font();
  if (result.pointSizeF() > 0)
    result.setPointSizeF(result.pointSizeF() * factor);
  else
    result.setPixelSize(static_cast<int>(std::lround(result.pixelSize() * factor)));
  if (weight != QFont::Normal) result.setWeight(weight);
  return result;
}

QColor mixed(const QColor& under, const QColor& over, double share) {
  const auto part = [share](float a, float b) { return static_cast<float>(a + (b - a) * share); };
  return QColor::fromRgbF(part(under.redF(), over.redF()), part(under.greenF(), over.greenF()),
                          part(under.blueF(), over.blueF()));
}

QColor dimmedText(const QPalette& palette) { return shade(palette, 0.64); }

QColor accentInk(const QPalette& palette) {
  // Accents are chosen to lie below text; as text they need more distance from the window.
  return mixed(palette.color(QPalette::Highlight), palette.color(QPalette::WindowText), 0.25);
}

QColor groupFill(const QPalette& palette) {
  if (isDark(palette)) return shade(palette, 0.06);
  return mixed(palette.color(QPalette::Window), palette.color(QPalette::Base), 0.8);
}

QColor hairline(const QPalette& palette) { return shade(palette, 0.12); }

QColor controlFill(const QPalette& palette, bool isHovered) {
  const double distance = isDark(palette) ? 0.17 : 0.1;
  return shade(palette, isHovered ? distance + 0.08 : distance);
}

QColor switchTrack(const QPalette& palette) {
  return shade(palette, isDark(palette) ? 0.38 : 0.36);
}

bool showsFocus(const QWidget& widget) {
  return widget.hasFocus() && widget.window()->testAttribute(Qt::WA_KeyboardFocusChange);
}

void paintFocusRing(QPainter& painter, const QPalette& palette, const QRectF& bounds,
                    double radius) {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(palette.color(QPalette::Highlight), ringWidth));
  constexpr double inset = ringWidth / 2;
  painter.drawRoundedRect(bounds.adjusted(inset, inset, -inset, -inset), radius - inset,
                          radius - inset);
  painter.restore();
}

void paintHairline(QPainter& painter, const QPalette& palette, const QRectF& bounds) {
  // On the pixels that there are, or it would be smeared over two at a broken scale.
  const QTransform toDevice = painter.deviceTransform();
  QRectF line = toDevice.mapRect(bounds);
  line.setTop(std::round(line.top()));
  line.setHeight(1);
  painter.fillRect(toDevice.inverted().mapRect(line), hairline(palette));
}

}  // namespace valdrix::desktop::formStyle
