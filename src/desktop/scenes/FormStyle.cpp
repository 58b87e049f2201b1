#include "desktop/scenes/FormStyle.h"

#include <algorithm>
#include <cmath>

#include <QApplication>
#include <QFontDatabase>
#include <QPainter>
#include <QWidget>

namespace valdrix::desktop::formStyle {

namespace {

constexpr double ringWidth = 2;

/// The window's colour with so much of its text's.
QColor shade(const QPalette& palette, double share) {
  return mixed(palette.color(QPalette::Window), palette.color(QPalette::WindowText), share);
}

/// The share of the light that a colour sends out.
double luminance(const QColor& color) {
  const auto linear = [](double part) {
    return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
         0.0722 * linear(color.blueF());
}

}  // namespace

bool isDark(const QPalette& palette) {
  return luminance(palette.color(QPalette::Window)) <
         luminance(palette.color(QPalette::WindowText));
}

double contrast(const QColor& a, const QColor& b) {
  const auto [darker, lighter] = std::minmax({luminance(a), luminance(b)});
  return (lighter + 0.05) / (darker + 0.05);
}

QColor distinct(const QColor& color, const QColor& ground, double least, const QColor& towards) {
  constexpr int steps = 20;
  for (int i = 0; i < steps; ++i) {
    const QColor tried = mixed(color, towards, static_cast<double>(i) / steps);
    if (contrast(tried, ground) >= least) return tried;
  }
  return towards;
}

QFont font(double factor, QFont::Weight weight) {
  QFont result = QApplication::font();
  if (result.pointSizeF() > 0)
    result.setPointSizeF(result.pointSizeF() * factor);
  else
    result.setPixelSize(static_cast<int>(std::lround(result.pixelSize() * factor)));
  if (weight != QFont::Normal) result.setWeight(weight);
  return result;
}

QFont codeFont(double factor) {
  QFont result = font(factor);
  result.setFamilies(QFontDatabase::systemFont(QFontDatabase::FixedFont).families());
  return result;
}

QColor mixed(const QColor& under, const QColor& over, double share) {
  const auto part = [share](float a, float b) { return static_cast<float>(a + (b - a) * share); };
  return QColor::fromRgbF(part(under.redF(), over.redF()), part(under.greenF(), over.greenF()),
                          part(under.blueF(), over.blueF()));
}

QColor dimmedText(const QPalette& palette) { return shade(palette, 0.64); }

QColor accentInk(const QPalette& palette) {
  // Accents are chosen to lie below text; as text they need more distance from what they lie on.
  return distinct(palette.color(QPalette::Highlight), controlFill(palette, false), textContrast,
                  palette.color(QPalette::WindowText));
}

QColor accentFill(const QPalette& palette) {
  const QColor text = palette.color(QPalette::HighlightedText);
  const bool isTextLight = luminance(text) > 0.18;
  return distinct(palette.color(QPalette::Highlight), text, textContrast,
                  isTextLight ? Qt::black : Qt::white);
}

QColor symbolInk(const QPalette& palette, const QColor& color) {
  return distinct(color, groupFill(palette), shapeContrast, palette.color(QPalette::WindowText));
}

QColor groupFill(const QPalette& palette) {
  if (isDark(palette)) return shade(palette, 0.05);
  return mixed(palette.color(QPalette::Window), palette.color(QPalette::Base), 0.8);
}

QColor hairline(const QPalette& palette) { return shade(palette, 0.12); }

QColor controlFill(const QPalette& palette, bool isHovered) {
  const double distance = isDark(palette) ? 0.17 : 0.1;
  return shade(palette, isHovered ? distance + 0.08 : distance);
}

QColor switchTrack(const QPalette& palette) {
  return distinct(shade(palette, 0.36), groupFill(palette), shapeContrast,
                  palette.color(QPalette::WindowText));
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
