#include "desktop/scenes/TextLabel.h"

#include <algorithm>
#include <cmath>

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QMenu>
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
  followColor();
  update();
}

bool TextLabel::isSelectable() const {
  return textInteractionFlags().testFlag(Qt::TextSelectableByKeyboard);
}

void TextLabel::makeSelectable() {
  look_.hasTabularDigits = false;
  setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  setFocusPolicy(Qt::StrongFocus);
  setCursor(Qt::IBeamCursor);
  followColor();
}

// Text that can be selected is painted by the label itself, from its palette.
void TextLabel::followColor() {
  if (!isSelectable()) return;
  const bool isPrimary = look_.prominence == view::Prominence::primary;
  const QPalette colors = QApplication::palette();
  QPalette own;
  if (!isPrimary) own.setColor(QPalette::WindowText, formStyle::dimmedText(colors));
  setPalette(own);
}

QColor TextLabel::color() const {
  return look_.prominence == view::Prominence::primary ? palette().color(QPalette::WindowText)
                                                       : formStyle::dimmedText(palette());
}

void TextLabel::followFont() {
  setFont(look_.isCode ? formStyle::codeFont(look_.fontFactor)
                       : formStyle::font(look_.fontFactor, look_.weight));
}

void TextLabel::changeEvent(QEvent* event) {
  if (event->type() == QEvent::ApplicationFontChange) followFont();
  if (event->type() == QEvent::PaletteChange) followColor();
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

// All of it, so that it can be copied at once; the arrow keys begin a selection of their own.
void TextLabel::focusInEvent(QFocusEvent* event) {
  QLabel::focusInEvent(event);
  const bool isByKey =
      event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason;
  if (isSelectable() && isByKey) setSelection(0, static_cast<int>(text().size()));
}

void TextLabel::contextMenuEvent(QContextMenuEvent* event) {
  if (!isSelectable()) return QLabel::contextMenuEvent(event);
  auto* const menu = new QMenu(this);
  menu->setAttribute(Qt::WA_DeleteOnClose);
  const QString selected = selectedText();
  QAction* const copy = menu->addAction(QStringLiteral("Copier"));
  copy->setEnabled(!selected.isEmpty());
  connect(copy, &QAction::triggered, this,
          [selected] { QGuiApplication::clipboard()->setText(selected); });
  connect(menu->addAction(QStringLiteral("Tout sélectionner")), &QAction::triggered, this,
          [this] { setSelection(0, static_cast<int>(text().size())); });
  menu->popup(event->globalPos());
}

void TextLabel::paintEvent(QPaintEvent* event) {
  if (isSelectable()) return QLabel::paintEvent(event);
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
