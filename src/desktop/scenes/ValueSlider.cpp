#include "desktop/scenes/ValueSlider.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <QPainter>
#include <QSignalBlocker>
#include <QStyle>
#include <QStyleOptionSlider>
#include <QWheelEvent>

#include "desktop/scenes/FormStyle.h"

namespace valdrix::desktop {

namespace {

constexpr double grooveHeight = 4;
constexpr double knobRadius = 8;

}  // namespace

ValueSlider::ValueSlider(std::function<void()> didEdit, QWidget* parent)
    : QSlider(Qt::Horizontal, parent), didEdit_(std::move(didEdit)) {
  setFocusPolicy(Qt::StrongFocus);
  setSingleStep(1);
  setMinimumHeight(static_cast<int>(2 * knobRadius + 8));
  connect(this, &QSlider::valueChanged, this, [this](int steps) {
    if (slider_.set) slider_.set(valueAt(steps));
    didEdit_();
  });
}

void ValueSlider::show(const view::Slider& slider) {
  const QSignalBlocker quiet(this);
  slider_ = slider;
  setAccessibleName(QString::fromStdString(slider.title));
  setRange(0, stepsTo(slider.maximum));
  setPageStep(std::max(maximum() / 5, 1));
  setValue(stepsTo(slider.value));
}

double ValueSlider::valueAt(int steps) const {
  // Sums of a tenth are not tenths; the nearest number of six places is what was meant.
  constexpr double places = 1e6;
  return std::round((slider_.minimum + steps * slider_.step) * places) / places;
}

int ValueSlider::stepsTo(double value) const {
  const double last = std::round((slider_.maximum - slider_.minimum) / slider_.step);
  const double steps = std::round((value - slider_.minimum) / slider_.step);
  constexpr double most = 10000;
  // Also what is no number ends up at the lower end.
  return steps > 0 && last > 0 ? static_cast<int>(std::min({steps, last, most})) : 0;
}

// The knob is where the desktop's style has it, so that it is grasped there.
void ValueSlider::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  QStyleOptionSlider option;
  initStyleOption(&option);
  const QRectF handle =
      style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, this);
  const QPointF knob(handle.center().x(), rect().toRectF().center().y());
  const QPalette& colors = palette();
  const QRectF groove(knobRadius, knob.y() - grooveHeight / 2, width() - 2 * knobRadius,
                      grooveHeight);
  const auto paintGroove = [&](const QColor& color, double from, double to) {
    painter.setBrush(color);
    painter.drawRoundedRect(QRectF(QPointF(from, groove.top()), QPointF(to, groove.bottom())),
                            grooveHeight / 2, grooveHeight / 2);
  };
  paintGroove(formStyle::switchTrack(colors), groove.left(), groove.right());
  paintGroove(formStyle::accentFill(colors), groove.left(), knob.x());
  painter.setBrush(QColor(0, 0, 0, 60));
  painter.drawEllipse(knob + QPointF(0, 0.5), knobRadius + 0.75, knobRadius + 0.75);
  painter.setBrush(isSliderDown() ? QColor(235, 235, 235) : QColor(Qt::white));
  painter.drawEllipse(knob, knobRadius, knobRadius);
  constexpr double ring = knobRadius + 3;
  if (formStyle::showsFocus(*this))
    formStyle::paintFocusRing(painter, colors,
                              {knob.x() - ring, knob.y() - ring, 2 * ring, 2 * ring}, ring);
}

// The wheel scrolls the form, also where a slider happens to come under the pointer.
void ValueSlider::wheelEvent(QWheelEvent* event) { event->ignore(); }

void* ValueSliderAccessible::interface_cast(QAccessible::InterfaceType type) {
  if (type == QAccessible::ValueInterface) return static_cast<QAccessibleValueInterface*>(this);
  return QAccessibleWidget::interface_cast(type);
}

}  // namespace valdrix::desktop
