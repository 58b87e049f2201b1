#include "desktop/scenes/ProminentPushButton.h"

#include <algorithm>

#include <QPainter>

#include "desktop/scenes/FormStyle.h"
#include "desktop/ui/SymbolPainting.h"

namespace valdrix::desktop {

namespace {

constexpr int ringRoom = 3;
constexpr int padding = 14;
constexpr int bodyHeight = 30;
constexpr int symbolSize = 16;
constexpr int symbolGap = 7;
constexpr double radius = 7;

}  // namespace

ProminentPushButton::ProminentPushButton(QWidget* parent) : QPushButton(parent) {
  setAttribute(Qt::WA_Hover);
  setAutoDefault(true);
}

void ProminentPushButton::setLabel(const std::string& symbol, const std::string& title) {
  symbol_ = symbol;
  setAccessibleName(QString::fromStdString(title));
  setText(accessibleName().replace('&', "&&"));
  updateGeometry();
  update();
}

QSize ProminentPushButton::sizeHint() const {
  const int text = fontMetrics().horizontalAdvance(accessibleName());
  const int body = std::max(bodyHeight, fontMetrics().height() + 2 * symbolGap);
  return {text + symbolSize + symbolGap + 2 * (padding + ringRoom), body + 2 * ringRoom};
}

void ProminentPushButton::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const QColor accent = formStyle::accentFill(palette());
  const QColor ink = palette().color(QPalette::HighlightedText);
  // Away from the text's colour, or it would be harder to read there.
  constexpr double pressedShare = 0.16;
  constexpr double hoveredShare = 0.08;
  const double share = isDown() ? pressedShare : underMouse() ? hoveredShare : 0;
  const QRectF body = QRectF(rect()).adjusted(ringRoom, ringRoom, -ringRoom, -ringRoom);
  painter.setPen(Qt::NoPen);
  painter.setBrush(
      formStyle::mixed(accent, ink.lightnessF() > 0.5F ? Qt::black : Qt::white, share));
  painter.drawRoundedRect(body, radius, radius);
  const double text = fontMetrics().horizontalAdvance(accessibleName());
  const double left = body.center().x() - (symbolSize + symbolGap + text) / 2;
  paintSymbol(painter, symbol_,
              QRectF(left, body.center().y() - symbolSize / 2.0, symbolSize, symbolSize), ink);
  painter.setPen(ink);
  painter.drawText(body.adjusted(left - body.left() + symbolSize + symbolGap, 0, 0, 0),
                   Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine, accessibleName());
  if (formStyle::showsFocus(*this))
    formStyle::paintFocusRing(painter, palette(), rect(), radius + ringRoom);
}

}  // namespace valdrix::desktop
