#include "desktop/scenes/FormButton.h"

#include <QPainter>

#include "desktop/scenes/FormStyle.h"

namespace valdrix::desktop {

namespace {

constexpr double radius = 6;

}  // namespace

FormButton::FormButton(const QString& title, QWidget* parent) : QPushButton(parent) {
  setAttribute(Qt::WA_Hover);
  setTitle(title);
}

void FormButton::setTitle(const QString& title) {
  setAccessibleName(title);
  // An ampersand would be taken for the mark of a shortcut.
  setText(QString(title).replace('&', "&&"));
  updateGeometry();
}

QSize FormButton::sizeHint() const {
  constexpr int sides = 14 + ringGap;
  constexpr int ends = 5 + ringGap;
  const QSize text = fontMetrics().size(Qt::TextSingleLine, accessibleName());
  return text + QSize(2 * sides, 2 * ends);
}

void FormButton::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const QColor fill = formStyle::controlFill(palette(), underMouse() || isDown());
  const QColor ink = palette().color(QPalette::WindowText);
  constexpr double pressedShare = 0.15;
  painter.setPen(Qt::NoPen);
  painter.setBrush(isDown() ? formStyle::mixed(fill, ink, pressedShare) : fill);
  painter.drawRoundedRect(rect().adjusted(ringGap, ringGap, -ringGap, -ringGap), radius, radius);
  painter.setPen(ink);
  painter.drawText(rect(), Qt::AlignCenter | Qt::TextSingleLine, accessibleName());
  if (formStyle::showsFocus(*this))
    formStyle::paintFocusRing(painter, palette(), rect(), radius + ringGap);
}

}  // namespace valdrix::desktop
