#include "desktop/scenes/ValueSlider.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <QSignalBlocker>
#include <QWheelEvent>

namespace valdrix::desktop {

ValueSlider::ValueSlider(std::function<void()> didEdit, QWidget* parent)
    : QSlider(Qt::Horizontal, parent), didEdit_(std::move(didEdit)) {
  setFocusPolicy(Qt::StrongFocus);
  setSingleStep(1);
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

// The wheel scrolls the form, also where a slider happens to come under the pointer.
void ValueSlider::wheelEvent(QWheelEvent* event) { event->ignore(); }

void* ValueSliderAccessible::interface_cast(QAccessible::InterfaceType type) {
  if (type == QAccessible::ValueInterface) return static_cast<QAccessibleValueInterface*>(this);
  return QAccessibleWidget::interface_cast(type);
}

}  // namespace valdrix::desktop
