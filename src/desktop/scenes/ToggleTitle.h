#pragma once

#include "desktop/scenes/TextLabel.h"

namespace valdrix::desktop {

/// What stands before a switch: a title, perhaps with a coloured dot before it and a smaller,
/// dimmed text after it. One text to those who cannot see.
class ToggleTitle final : public TextLabel {
 public:
  explicit ToggleTitle(QWidget* parent = nullptr);

  void setLabel(const view::ToggleLabel& label);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  view::ToggleLabel label_;
};

}  // namespace valdrix::desktop
