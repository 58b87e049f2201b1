#pragma once

#include <string>

#include <QPushButton>

namespace valdrix::desktop {

/// A push button filled with the accent colour, with a symbol before its title.
class ProminentPushButton final : public QPushButton {
 public:
  explicit ProminentPushButton(QWidget* parent = nullptr);

  /// `symbol` is the name of one of our own, drawn in the text's colour.
  void setLabel(const std::string& symbol, const std::string& title);

  [[nodiscard]] QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  std::string symbol_;
};

}  // namespace valdrix::desktop
