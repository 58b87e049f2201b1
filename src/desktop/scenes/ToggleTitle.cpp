#include "desktop/scenes/ToggleTitle.h"

#include <QPainter>
#include <QTextLayout>

#include "desktop/scenes/FormStyle.h"
#include "desktop/ui/QtPath.h"

namespace valdrix::desktop {

namespace {

constexpr int dotSize = 10;
constexpr int partGap = 8;

/// The detail in its own font and colour, as far from the title as the gap.
QList<QTextLayout::FormatRange> formats(const QString& title, const QString& detail,
                                        const QPalette& palette) {
  const QFont font = formStyle::font(formStyle::calloutFactor);
  QTextCharFormat detailFormat;
  detailFormat.setFont(font);
  detailFormat.setForeground(formStyle::dimmedText(palette));
  QFont spacing = font;
  spacing.setWordSpacing(partGap - QFontMetricsF(font).horizontalAdvance(u' '));
  QTextCharFormat gapFormat;
  gapFormat.setFont(spacing);
  const int length = static_cast<int>(title.size());
  return {{length, 1, gapFormat}, {length + 1, static_cast<int>(detail.size()), detailFormat}};
}

}  // namespace

ToggleTitle::ToggleTitle(QWidget* parent) : TextLabel({.isWrapped = true}, parent) {
  setAttribute(Qt::WA_TransparentForMouseEvents);
}

void ToggleTitle::setLabel(const view::ToggleLabel& label) {
  if (label == label_ && !text().isEmpty()) return;
  label_ = label;
  setContentsMargins(label.dot ? dotSize + partGap : 0, 0, 0, 0);
  setUtf8(label.detail ? label.title + " " + *label.detail : label.title);
  update();
}

void ToggleTitle::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  QTextLayout layout(text(), font());
  const auto title = QString::fromStdString(label_.title);
  if (label_.detail)
    layout.setFormats(formats(title, QString::fromStdString(*label_.detail), palette()));
  layout.beginLayout();
  double textHeight = 0;
  double firstLine = 0;
  for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
    line.setLineWidth(contentsRect().width());
    line.setPosition({0, textHeight});
    textHeight += line.height();
    if (firstLine == 0) firstLine = line.height();
  }
  layout.endLayout();
  const double top = (height() - textHeight) / 2;
  painter.setPen(color());
  layout.draw(&painter, QPointF(contentsRect().left(), top));
  if (!label_.dot) return;
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(toQt(*label_.dot));
  painter.drawEllipse(QRectF(0, top + (firstLine - dotSize) / 2, dotSize, dotSize));
}

}  // namespace valdrix::desktop
