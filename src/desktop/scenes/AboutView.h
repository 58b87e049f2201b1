#pragma once

#include <functional>
#include <string>

#include <QWidget>

#include "desktop/scenes/ProminentPushButton.h"
#include "desktop/scenes/TextLabel.h"
#include "view/SettingsScene.h"

namespace valdrix::desktop {

/// What the program says of itself, as widgets.
class AboutView final : public QWidget {
 public:
  /// `didEdit` is called after each action of the user.
  explicit AboutView(std::function<void()> didEdit, QWidget* parent = nullptr);

  /// Shows this from now on.
  void show(const view::AboutPanel& panel);

 private:
  void arrange();

  QLabel image_;
  TextLabel name_;
  TextLabel version_;
  TextLabel description_;
  ProminentPushButton button_;
  TextLabel legalNotice_;
  std::string shownImage_;
  std::function<void()> action_;
};

}  // namespace valdrix::desktop
