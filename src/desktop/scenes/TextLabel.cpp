#include "desktop/scenes/TextLabel.h"

#include <algorithm>
#include <cmath>

#include <QEvent>
#include <QPainter>

#include "desktop/scenes/FormStyle.h"

namespace valdrix::desktop {

namespace {

/// Calls `place` with each piece of the text that stands for itself, a digit alone, and the width
/// of its cell; returns the width of all.
template <class Place>
double layOutTabular(const QString& text, const QFontMetricsF& metrics, Place place) {
  double digitWidth = 0;
  for (char16_t digit = u'0'; digit <= u'9'; ++digit)
    digitWidth = std::max(digitWidth, metrics.horizontalAdvance(QChar(digit)));
  const auto isDigit = [&](qsizetype i) { return text[i] >= u'0' && text[i] <= u'9'; };
  double x = 0;
  for (qsizetype start = 0, end = 0; start < text.size(); start = end) {
    end = start + 1;
    while (!isDigit(start) && end < text.size() && !isDigit(end)) ++end;
    const QString piece = text.mid(start, end - start);
    const double natural = metrics.horizontalAdvance(piece);
    const double width = isDigit(start) ? digitWidth : natural;
    place(piece, x + (width - natural) / 2);
    x += width;
  }
  return x;
}

}  // namespace

TextLabel::TextLabel(const Look& look, QWidget* parent) : QLabel(parent), look_(look) {
  setTextFormat(Qt::PlainText);
  setWordWrap(look.isWrapped);
  followFont();
}

void TextLabel::setUtf8(const std::string& text) {
  const auto shown = QString::fromStdString(text);
  if (shown != QLabel::text()) setText(shown);
}

void TextLabel::setProminence(view::Prominence prominence) {
  if (look_.prominence == prominence) return;
  look_.prominence = prominence;
  update();
}

QColor TextLabel::color() const {
  return look_.prominence == view::Prominence::primary ? palette().color(QPalette::WindowText)
                                                       : formStyle::dimmedText(palette());
}

void TextLabel::followFont() { setFont(formStyle::font(look_.fontFactor, look_.weight)); }

void TextLabel::changeEvent(QEvent* event) {
  if (event->type() == QEvent::ApplicationFontChange) followFont();
  QLabel::changeEvent(event);
}

QSize TextLabel::sizeHint() const {
  if (!look_.hasTabularDigits) return QLabel::sizeHint();
  const double width = layOutTabular(text(), QFontMetricsF(font()), [](const QString&, double) {});
  return {static_cast<int>(std::ceil(width)), QLabel::sizeHint().height()};
}

QSize TextLabel::minimumSizeHint() const {
  return look_.hasTabularDigits ? sizeHint() : QLabel::minimumSizeHint();
}

void TextLabel::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setPen(color());
  if (!look_.hasTabularDigits) {
    const int flags = static_cast<int>(alignment()) | (wordWrap() ? int{Qt::TextWordWrap} : 0);
    painter.drawText(contentsRect(), flags, text());
    return;
  }
  const QFontMetricsF metrics(font());
  const double slack = contentsRect().width() - sizeHint().width();
  const double left = alignment().testFlag(Qt::AlignHCenter) ? slack / 2
                      : alignment().testFlag(Qt::AlignRight) ? slack
                                                             : 0;
  const double baseline = (height() - metrics.height()) / 2 + metrics.ascent();
  layOutTabular(text(), metrics, [&](const QString& piece, double x) {
    painter.drawText(QPointF(left + x, baseline), piece);
  });
}

}  // namespace valdrix::desktop
