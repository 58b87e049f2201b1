#pragma once

#include <functional>

#include <QAccessibleWidget>
#include <QSlider>

#include "view/Form.h"

namespace valdrix::desktop {

/// A slider over the values of a description, in its steps.
class ValueSlider final : public QSlider {
 public:
  explicit ValueSlider(std::function<void()> didEdit, QWidget* parent = nullptr);

  void show(const view::Slider& slider);

  /// The value at a number of steps from the lower end.
  [[nodiscard]] double valueAt(int steps) const;
  /// The number of steps from the lower end to the place nearest to `value`.
  [[nodiscard]] int stepsTo(double value) const;
  [[nodiscard]] const view::Slider& described() const { return slider_; }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;

 private:
  view::Slider slider_;
  std::function<void()> didEdit_;
};

/// Tells those who cannot see the value itself instead of a number of steps.
class ValueSliderAccessible final : public QAccessibleWidget, public QAccessibleValueInterface {
 public:
  explicit ValueSliderAccessible(ValueSlider& slider)
      : QAccessibleWidget(&slider, QAccessible::Slider), slider_(slider) {}

  void* interface_cast(QAccessible::InterfaceType type) override;
  [[nodiscard]] QVariant currentValue() const override { return slider_.valueAt(slider_.value()); }
  void setCurrentValue(const QVariant& value) override {
    slider_.setValue(slider_.stepsTo(value.toDouble()));
  }
  [[nodiscard]] QVariant minimumValue() const override { return slider_.described().minimum; }
  [[nodiscard]] QVariant maximumValue() const override { return slider_.described().maximum; }
  [[nodiscard]] QVariant minimumStepSize() const override { return slider_.described().step; }

 private:
  ValueSlider& slider_;
};

}  // namespace valdrix::desktop
