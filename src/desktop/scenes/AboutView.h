#pragma once

#include <functional>
#include <string>

#include <QIcon>
#include <QWidget>

#include "desktop/scenes/ProminentPushButton.h"
#include "desktop/scenes/TextLabel.h"
#include "view/SettingsScene.h"

namespace valdrix::desktop {

/// An icon as large as the widget, drawn anew at each scale that it comes to be seen at.
class IconView final : public QWidget {
 public:
  void show(const QIcon& icon) {
    icon_ = icon;
    update();
  }
  [[nodiscard]] bool isEmpty() const { return icon_.isNull(); }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QIcon icon_;
};

/// What the program says of itself, as widgets.
class AboutView final : public QWidget {
 public:
  /// `didEdit` is called after each action of the user.
  explicit AboutView(std::function<void()> didEdit, QWidget* parent = nullptr);

  /// Shows this from now on.
  void show(const view::AboutPanel& panel);

 private:
  void arrange();

  IconView image_;
  TextLabel name_;
  TextLabel version_;
  TextLabel description_;
  ProminentPushButton button_;
  TextLabel legalNotice_;
  std::string shownImage_;
  std::function<void()> action_;
};

}  // namespace valdrix::desktop
