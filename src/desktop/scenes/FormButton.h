#pragma once

#include <QPushButton>

namespace valdrix::desktop {

/// A push button that stands out from its group as the arrows of a stepper do.
class FormButton final : public QPushButton {
 public:
  /// How far from its edges it is drawn, to leave room for the ring of the focus.
  static constexpr int ringGap = 3;

  explicit FormButton(const QString& title = {}, QWidget* parent = nullptr);

  void setTitle(const QString& title);
  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace valdrix::desktop
