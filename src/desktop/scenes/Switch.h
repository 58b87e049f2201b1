#pragma once

#include <QCheckBox>
#include <QVariantAnimation>

namespace valdrix::desktop {

/// A check box that is drawn as a switch.
class Switch final : public QCheckBox {
 public:
  /// How far from its edges it is drawn, to leave room for the ring of the focus.
  static constexpr int ringGap = 3;

  explicit Switch(QWidget* parent = nullptr);

  /// Shows that state without a move and without a signal.
  void showState(bool isOn);

  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  [[nodiscard]] bool hitButton(const QPoint& position) const override;
  void paintEvent(QPaintEvent* event) override;

 private:
  void slide();

  /// Where the knob is, from 0 (off) to 1 (on).
  QVariantAnimation knob_;
};

}  // namespace valdrix::desktop
