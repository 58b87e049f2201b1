#include "desktop/scenes/FormView.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include <QAccessibleWidget>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyle>
#include <QStyleOptionSlider>
#include <QVBoxLayout>

#include "desktop/scenes/FormSectionView.h"
#include "desktop/scenes/FormStyle.h"
#include "desktop/scenes/SettingsWindow.h"
#include "desktop/scenes/ValueSlider.h"

namespace valdrix::desktop {

namespace {

constexpr int sectionGap = 20;
constexpr int smallestMargin = 4;

/// A scroll bar of which only the knob is seen, on whatever lies below.
class BareScrollBar final : public QScrollBar {
 public:
  BareScrollBar() : QScrollBar(Qt::Vertical) {
    setAttribute(Qt::WA_Hover);
    setAttribute(Qt::WA_OpaquePaintEvent, false);
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    constexpr double thickness = 6;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QStyleOptionSlider option;
    initStyleOption(&option);
    QRectF knob =
        style()->subControlRect(QStyle::CC_ScrollBar, &option, QStyle::SC_ScrollBarSlider, this);
    const double inset = (knob.width() - thickness) / 2;
    knob.adjust(inset, inset, -inset, -inset);
    const QColor atRest = formStyle::switchTrack(palette());
    painter.setPen(Qt::NoPen);
    painter.setBrush(isSliderDown() || underMouse()
                         ? formStyle::mixed(atRest, palette().color(QPalette::WindowText), 0.3)
                         : atRest);
    painter.drawRoundedRect(knob, thickness / 2, thickness / 2);
  }
};

QAccessibleInterface* accessibleFor(const QString&, QObject* object) {
  if (auto* const slider = dynamic_cast<ValueSlider*>(object))
    return new ValueSliderAccessible(*slider);
  if (auto* const group = dynamic_cast<RowGroup*>(object))
    return new QAccessibleWidget(group, QAccessible::Grouping);
  if (auto* const window = dynamic_cast<SettingsWindow*>(object))
    return new QAccessibleWidget(window, QAccessible::Window);
  return nullptr;
}

}  // namespace

FormView::FormView(FormContext context, QWidget* parent)
    : QScrollArea(parent), context_(std::move(context)) {
  static const bool isInstalled = (QAccessible::installFactory(accessibleFor), true);
  Q_UNUSED(isInstalled);
  setFrameShape(QFrame::NoFrame);
  setWidgetResizable(true);
  setVerticalScrollBar(new BareScrollBar);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  // The controls have the focus; the keys that they don't use scroll.
  setFocusPolicy(Qt::NoFocus);
  auto* const content = new QWidget;
  sections_ = new QVBoxLayout(content);
  sections_->setSpacing(sectionGap);
  sections_->addStretch(1);
  setWidget(content);
  content->setAutoFillBackground(false);
  viewport()->setAutoFillBackground(false);
  keepGroupsInPlace();
}

void FormView::show(const view::Form& form) {
  const auto before = controls();
  // The window's, because the form remembers its own also when the focus has gone to the tabs.
  const auto focused = std::ranges::find(before, window()->focusWidget()) - before.begin();
  const bool hadFocus = std::cmp_less(focused, before.size());
  if (update(form)) orderFocus();
  const auto after = controls();
  if (hadFocus && !after.empty() &&
      std::ranges::find(after, window()->focusWidget()) == after.end())
    after[std::min(static_cast<std::size_t>(focused), after.size() - 1)]->setFocus();
}

bool FormView::update(const view::Form& form) {
  bool isNew = views_.size() != form.sections.size();
  while (views_.size() > form.sections.size()) {
    delete views_.back();
    views_.pop_back();
  }
  for (std::size_t i = 0; i < form.sections.size(); ++i) {
    if (i == views_.size()) {
      views_.push_back(new FormSectionView(context_));
      sections_->insertWidget(static_cast<int>(i), views_.back());
      views_.back()->setVisible(true);
    }
    isNew = views_[i]->show(form.sections[i]) || isNew;
  }
  return isNew;
}

std::vector<QWidget*> FormView::controls() const {
  std::vector<QWidget*> all;
  for (const auto* section : views_)
    std::ranges::copy(section->controls(), std::back_inserter(all));
  return all;
}

void FormView::orderFocus() {
  QWidget* last = nullptr;
  for (auto* const control : controls()) {
    if (last) setTabOrder(last, control);
    last = control;
  }
}

bool FormView::scrollBy(const QKeyEvent& key) {
  using Action = QAbstractSlider::SliderAction;
  static constexpr std::pair<Qt::Key, Action> actions[] = {
      {Qt::Key_Up, Action::SliderSingleStepSub},   {Qt::Key_Down, Action::SliderSingleStepAdd},
      {Qt::Key_PageUp, Action::SliderPageStepSub}, {Qt::Key_PageDown, Action::SliderPageStepAdd},
      {Qt::Key_Home, Action::SliderToMinimum},     {Qt::Key_End, Action::SliderToMaximum}};
  const auto* const action =
      std::ranges::find(actions, key.key(), &std::pair<Qt::Key, Action>::first);
  if (action == std::end(actions) || (key.modifiers() & ~Qt::KeypadModifier)) return false;
  verticalScrollBar()->triggerAction(action->second);
  return true;
}

void FormView::keyPressEvent(QKeyEvent* event) {
  if (!scrollBy(*event)) event->ignore();
}

void FormView::resizeEvent(QResizeEvent* event) {
  QScrollArea::resizeEvent(event);
  keepGroupsInPlace();
}

// The scroll bar comes out of the margin, so that nothing moves when it comes or goes.
void FormView::keepGroupsInPlace() {
  constexpr int margin = formStyle::windowMargin;
  const int scrollBar = width() - viewport()->width();
  sections_->setContentsMargins(margin, margin, std::max(margin - scrollBar, smallestMargin),
                                margin);
}

}  // namespace valdrix::desktop
