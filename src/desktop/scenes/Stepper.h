#pragma once

#include <cstdint>
#include <functional>

#include <QSpinBox>

#include "view/Form.h"

namespace valdrix::desktop {

/// Two arrows that move a value, which is shown beside them; they repeat while they are held. With
/// the keyboard: up and down, and by ten steps page up and page down. A spin button with the
/// value's text to those who cannot see.
class Stepper final : public QSpinBox {
 public:
  /// How far from its edges it is drawn, to leave room for the ring of the focus.
  static constexpr int ringGap = 3;

  explicit Stepper(std::function<void()> didEdit, QWidget* parent = nullptr);

  void show(const view::Stepper& stepper);

  void stepBy(int steps) override;
  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  [[nodiscard]] StepEnabled stepEnabled() const override;
  [[nodiscard]] QString textFromValue(int value) const override;
  void keyPressEvent(QKeyEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;

 private:
  void write(std::int64_t value);

  view::Stepper stepper_;
  std::function<void()> didEdit_;
};

}  // namespace valdrix::desktop
