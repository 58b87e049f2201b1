#include "desktop/scenes/SettingsTabBar.h"

#include <algorithm>

#include <QEvent>
#include <QPainter>
#include <QWheelEvent>

#include "desktop/scenes/FormStyle.h"
#include "desktop/ui/SymbolPainting.h"

namespace valdrix::desktop {

namespace {

constexpr int tabSymbolSize = 24;
constexpr int tabSymbolGap = 3;
constexpr int tabPadding = 6;
constexpr int sidePadding = 12;
constexpr int smallestWidth = 76;
constexpr int gapBetween = 4;
constexpr double tabRadius = 7;

}  // namespace

SettingsTabBar::SettingsTabBar(const std::vector<view::Tab>& tabs, QWidget* parent)
    : QTabBar(parent) {
  setDrawBase(false);
  setExpanding(false);
  setUsesScrollButtons(false);
  setElideMode(Qt::ElideNone);
  setFocusPolicy(Qt::StrongFocus);
  setAttribute(Qt::WA_Hover);
  setFont(formStyle::font(formStyle::calloutFactor));
  for (const auto& tab : tabs) {
    symbols_.push_back(tab.symbol);
    labels_.push_back(QString::fromStdString(tab.label));
    addTab(QString(labels_.back()).replace('&', "&&"));
  }
}

QSize SettingsTabBar::tabSizeHint(int index) const {
  const auto& label = labels_[static_cast<std::size_t>(index)];
  const int width = fontMetrics().horizontalAdvance(label) + 2 * sidePadding;
  return {std::max(width, smallestWidth) + gapBetween,
          tabSymbolSize + tabSymbolGap + fontMetrics().height() + 2 * tabPadding};
}

void SettingsTabBar::changeEvent(QEvent* event) {
  if (event->type() == QEvent::ApplicationFontChange)
    setFont(formStyle::font(formStyle::calloutFactor));
  QTabBar::changeEvent(event);
}

void SettingsTabBar::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  for (int i = 0; i < count(); ++i) paintTab(painter, i);
}

void SettingsTabBar::paintTab(QPainter& painter, int index) const {
  const QPalette& colors = palette();
  const bool isSelected = index == currentIndex();
  const QRectF tab = QRectF(tabRect(index)).adjusted(gapBetween / 2.0, 0, -gapBetween / 2.0, 0);
  const bool isHovered = underMouse() && tab.contains(mapFromGlobal(QCursor::pos()));
  if (isSelected || isHovered) {
    QColor fill = formStyle::controlFill(colors, false);
    if (!isSelected) fill.setAlphaF(0.5F);
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawRoundedRect(tab, tabRadius, tabRadius);
  }
  const QColor ink = isSelected ? formStyle::accentInk(colors) : formStyle::dimmedText(colors);
  const QRectF symbol(tab.center().x() - tabSymbolSize / 2.0, tab.top() + tabPadding, tabSymbolSize,
                      tabSymbolSize);
  const auto place = static_cast<std::size_t>(index);
  paintSymbol(painter, symbols_[place], symbol, ink);
  painter.setPen(ink);
  painter.drawText(tab.adjusted(0, tabPadding + tabSymbolSize + tabSymbolGap, 0, 0),
                   Qt::AlignHCenter | Qt::AlignTop | Qt::TextSingleLine, labels_[place]);
  if (isSelected && formStyle::showsFocus(*this))
    formStyle::paintFocusRing(painter, colors, tab, tabRadius);
}

// Another tab is too much for a turn of the wheel.
void SettingsTabBar::wheelEvent(QWheelEvent* event) { event->ignore(); }

}  // namespace valdrix::desktop
