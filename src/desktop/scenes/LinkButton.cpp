#include "desktop/scenes/LinkButton.h"

#include <utility>

#include <QKeyEvent>
#include <QPainter>

#include "desktop/scenes/FormStyle.h"

namespace valdrix::desktop {

LinkButton::LinkButton(std::function<void()> didEdit, QWidget* parent) : QAbstractButton(parent) {
  setFocusPolicy(Qt::StrongFocus);
  setAttribute(Qt::WA_Hover);
  setCursor(Qt::PointingHandCursor);
  setFont(formStyle::font(formStyle::calloutFactor));
  connect(this, &QAbstractButton::clicked, this, [this, edited = std::move(didEdit)] {
    if (action_) action_();
    edited();
  });
}

void LinkButton::show(const view::PushButton& link) {
  const auto title = QString::fromStdString(link.title);
  setAccessibleName(title);
  setText(QString(title).replace('&', "&&"));
  action_ = link.action;
  updateGeometry();
}

QSize LinkButton::sizeHint() const {
  const int width = fontMetrics().horizontalAdvance(accessibleName());
  return {width + 2 * ringGap, fontMetrics().height() + 2 * ringGap};
}

void LinkButton::changeEvent(QEvent* event) {
  if (event->type() == QEvent::ApplicationFontChange)
    setFont(formStyle::font(formStyle::calloutFactor));
  QAbstractButton::changeEvent(event);
}

// The enter key follows a link as the space bar does; the arrows are the page's.
void LinkButton::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
    click();
  else if (event->key() == Qt::Key_Space)
    QAbstractButton::keyPressEvent(event);
  else
    event->ignore();
}

void LinkButton::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  QFont shown = font();
  shown.setUnderline(underMouse());
  painter.setFont(shown);
  const QColor ink = formStyle::accentInk(palette());
  painter.setPen(isDown() ? formStyle::mixed(ink, palette().color(QPalette::WindowText), 0.4)
                          : ink);
  painter.drawText(rect(), Qt::AlignCenter | Qt::TextSingleLine, accessibleName());
  constexpr double radius = 5;
  if (formStyle::showsFocus(*this)) formStyle::paintFocusRing(painter, palette(), rect(), radius);
}

}  // namespace valdrix::desktop
