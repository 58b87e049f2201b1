#include "desktop/tray/TrayImage.h"

#include <cmath>
#include <numbers>

#include <QPainter>

#include "desktop/ui/SymbolPainting.h"

namespace valdrix::desktop {

namespace {

constexpr QColor light(240, 240, 240);
constexpr double rimOpacity = 0.8;
/// Of the picture's size: what is left free on each side, and how wide the rim is.
constexpr double margin = 1.0 / 16;
constexpr double rimWidth = 1.0 / 20;

QImage transparentSquare(int size) {
  QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  return image;
}

// All that lies within the rim's width of the symbol.
QImage shadow(std::string_view symbol, const QRectF& bounds, int size) {
  QImage image = transparentSquare(size);
  QPainter painter(&image);
  constexpr int directions = 8;
  for (int i = 0; i < directions; ++i) {
    const double angle = 2 * std::numbers::pi * i / directions;
    const double distance = rimWidth * size;
    paintSymbol(painter, symbol,
                bounds.translated(distance * std::cos(angle), distance * std::sin(angle)),
                Qt::black);
  }
  return image;
}

}  // namespace

QImage trayImage(std::string_view symbol, int size) {
  QImage image = transparentSquare(size);
  const double inset = margin * size;
  const QRectF bounds = QRectF(image.rect()).adjusted(inset, inset, -inset, -inset);
  QPainter painter(&image);
  painter.setOpacity(rimOpacity);
  painter.drawImage(0, 0, shadow(symbol, bounds, size));
  painter.setOpacity(1);
  paintSymbol(painter, symbol, bounds, light);
  return image;
}

}  // namespace valdrix::desktop
