#include "desktop/ui/QtTextLayout.h"

#include <algorithm>
#include <cmath>

#include <QFontMetricsF>
#include <QList>
#include <QLocale>
#include <QPainter>
#include <QStringView>

#include "desktop/ui/FontFamilies.h"

namespace valdrix::desktop {

namespace {

// Qt counts in 64ths of a point; a width that went through a few sums may come back one short.
constexpr double widthTolerance = 1.0 / 32;
// Stands for no limit; near the largest that Qt's fixed point holds.
constexpr double unlimitedWidth = 1e7;
// A limited number of lines shows no more than this of each; the rest is not even shaped.
constexpr qsizetype longestLine = 2000;

constexpr double smallestSize = 0.01;
constexpr QChar ellipsis(0x2026);

/// The text as it is shown: in capitals where asked for, every kind of line end as the one that
/// the layout knows.
QString shownText(std::string_view utf8, const view::TextStyle& style) {
  // No regular expression, whose library nothing else here needs.
  static constexpr QStringView lineEnds(u"\r\n\v\f\u0085\u2029");
  auto text = QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
  text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
  for (QChar& character : text) {
    if (lineEnds.contains(character)) character = QChar::LineSeparator;
    if (character == u'\t') character = u' ';
  }
  if (!style.isUppercase) return text;
  const auto locale =
      style.locale.empty() ? QLocale() : QLocale(QString::fromStdString(style.locale));
  return locale.toUpper(text);
}

/// Whether extra space may be hung on `character` alone. The parts of what is one character to the
/// reader must stay together, or they are not joined.
bool standsAlone(QChar character) {
  constexpr char16_t firstCombining = 0x300;
  return character.unicode() < firstCombining;
}

QString withoutTrailingSpace(QString text) {
  while (!text.isEmpty() && text.back().isSpace()) text.chop(1);
  return text;
}

}  // namespace

QtTextLayout::QtTextLayout(std::string_view text, const view::TextStyle& style, double maxWidth)
    : style_(style), maxWidth_(maxWidth) {
  QFont font = FontFamilies::font(style.font);
  scale_ = std::max(style.font.size, smallestSize) / font.pixelSize();
  tracking_ = style.tracking / scale_;
  font.setLetterSpacing(QFont::AbsoluteSpacing, tracking_);
  layout_.setFont(font);
  layout_.setCacheEnabled(true);
  if (style.font.hasMonospacedDigits) widenDigits();

  QString shown = shownText(text, style);
  if (style.lineLimit > 0) shown.truncate(style.lineLimit * longestLine);
  const double width =
      std::min((std::max(maxWidth, 0.0) + widthTolerance) / scale_, unlimitedWidth);
  setText(shown);
  breakLines(width, QTextOption::WrapAtWordBoundaryOrAnywhere, style.lineLimit);
  isNatural_ = holdsWholeText() && layout_.lineCount() == 1 + shown.count(QChar::LineSeparator);
  if (!holdsWholeText()) elide(shown, width);
  stackLines();
}

void QtTextLayout::widenDigits() {
  const QFontMetricsF metrics(layout_.font());
  for (std::size_t digit = 0; digit < digitPads_.size(); ++digit)
    digitPads_[digit] = metrics.horizontalAdvance(QChar(u'0' + static_cast<char16_t>(digit)));
  // One digit may be much wider than all others, as the 4 of some rounded faces is; a cell for it
  // would space the others apart. It reaches a little into its neighbours' cells instead.
  auto widths = digitPads_;
  std::nth_element(widths.begin(), widths.end() - 2, widths.end());
  const double cell = *(widths.end() - 2);
  for (double& pad : digitPads_) pad = (cell - pad) / 2;
}

double QtTextLayout::pad(QChar character) const {
  const int digit = character.unicode() - u'0';
  return digit >= 0 && digit < 10 ? digitPads_[static_cast<std::size_t>(digit)] : 0;
}

// Digits of equal width by letter spacing, since this Qt cannot ask a font for its tabular figures:
// a digit carries the space on its right, and what stands before it the space on its left.
void QtTextLayout::setText(const QString& text) {
  layout_.setText(text);
  QList<QTextLayout::FormatRange> ranges;
  for (qsizetype i = 0; style_.font.hasMonospacedDigits && i < text.size(); ++i) {
    const bool isDigit = text[i].unicode() >= u'0' && text[i].unicode() <= u'9';
    const bool carriesNext = i + 1 < text.size() && standsAlone(text[i]);
    const bool isCarried = i == 0 || standsAlone(text[i - 1]);
    const double own = pad(text[i]) * (isCarried ? 1 : 2);
    const double space = own + (carriesNext ? pad(text[i + 1]) : 0);
    if (!isDigit && space == 0) continue;
    QFont font = layout_.font();
    font.setLetterSpacing(QFont::AbsoluteSpacing, tracking_ + space);
    font.setKerning(false);
    QTextCharFormat format;
    format.setFont(font);
    ranges.append({static_cast<int>(i), 1, format});
  }
  layout_.setFormats(ranges);
}

void QtTextLayout::breakLines(double width, QTextOption::WrapMode mode, int lineLimit) {
  QTextOption option(Qt::AlignLeft | Qt::AlignAbsolute);
  option.setWrapMode(mode);
  option.setTextDirection(Qt::LayoutDirectionAuto);
  layout_.setTextOption(option);
  const double indent = layout_.text().isEmpty() ? 0 : pad(layout_.text().front());
  layout_.beginLayout();
  while (lineLimit <= 0 || layout_.lineCount() < lineLimit) {
    QTextLine line = layout_.createLine();
    if (!line.isValid()) break;
    const double x = line.textStart() == 0 ? indent : 0;
    line.setLineWidth(std::max(width - x, 0.0));
    line.setPosition({x, 0});
  }
  layout_.endLayout();
}

bool QtTextLayout::holdsWholeText() const {
  if (layout_.lineCount() == 0) return layout_.text().isEmpty();
  const QTextLine last = layout_.lineAt(layout_.lineCount() - 1);
  return last.textStart() + last.textLength() >= layout_.text().size();
}

void QtTextLayout::elide(const QString& text, double width) {
  const int lineStart = layout_.lineAt(layout_.lineCount() - 1).textStart();
  const QString before = text.left(lineStart);
  QString last = text.mid(lineStart).section(QChar::LineSeparator, 0, 0);

  setText(last + ellipsis);
  breakLines(width - QFontMetricsF(layout_.font()).horizontalAdvance(ellipsis) - tracking_,
             QTextOption::WrapAnywhere, 1);
  if (layout_.lineCount() > 0) last.truncate(layout_.lineAt(0).textLength());

  // What comes before the ellipsis may be kerned apart from it, so the fit is tried.
  while (true) {
    last = withoutTrailingSpace(last);
    setText(before + last + ellipsis);
    breakLines(width, QTextOption::WrapAtWordBoundaryOrAnywhere, style_.lineLimit);
    if (holdsWholeText() || last.isEmpty()) return;
    const int end = static_cast<int>(before.size() + last.size());
    last.truncate(layout_.previousCursorPosition(end) - before.size());
  }
}

void QtTextLayout::stackLines() {
  const QFontMetricsF metrics(layout_.font());
  // Line heights are those of the first font, whatever stands in for missing characters, and whole
  // points, so that baselines keep their distance on the pixel grid.
  const double ascent = metrics.ascent() * scale_;
  const double descent = metrics.descent() * scale_;
  const double lineHeight = std::ceil(ascent + descent);
  const double baseline = std::round((lineHeight + ascent - descent) / 2);
  for (int i = 0; i < layout_.lineCount(); ++i) {
    QTextLine line = layout_.lineAt(i);
    naturalWidth_ = std::max(naturalWidth_, (line.x() + line.naturalTextWidth()) * scale_);
    line.setPosition({line.x(), (i * lineHeight + baseline) / scale_ - line.ascent()});
  }
  size_ = {std::min(naturalWidth_, std::max(maxWidth_, 0.0)),
           std::max(layout_.lineCount(), 1) * lineHeight};
}

bool QtTextLayout::isFor(double maxWidth) const {
  return maxWidth == maxWidth_ || (isNatural_ && maxWidth >= naturalWidth_);
}

void QtTextLayout::draw(QPainter& painter, view::Point topLeft) const {
  if (scale_ == 1) {
    layout_.draw(&painter, {topLeft.x, topLeft.y});
    return;
  }
  const QTransform transform = painter.transform();
  painter.translate(topLeft.x, topLeft.y);
  painter.scale(scale_, scale_);
  layout_.draw(&painter, {});
  painter.setTransform(transform);
}

}  // namespace valdrix::desktop
