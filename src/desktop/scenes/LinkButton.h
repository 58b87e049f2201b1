#pragma once

#include <functional>

#include <QAbstractButton>

#include "view/Form.h"

namespace valdrix::desktop {

/// A line of text in the accent colour that leads somewhere, underlined under the pointer.
class LinkButton final : public QAbstractButton {
 public:
  /// How far from its edges it is drawn, to leave room for the ring of the focus.
  static constexpr int ringGap = 4;

  /// `didEdit` is called after each press.
  explicit LinkButton(std::function<void()> didEdit, QWidget* parent = nullptr);

  void show(const view::PushButton& link);

  [[nodiscard]] QSize sizeHint() const override;

 protected:
  void changeEvent(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  std::function<void()> action_;
};

}  // namespace valdrix::desktop
