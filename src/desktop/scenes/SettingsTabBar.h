#pragma once

#include <string>
#include <vector>

#include <QTabBar>

#include "view/SettingsScene.h"

namespace valdrix::desktop {

/// The tabs of a settings window: a symbol above a label each, beside each other in the middle.
class SettingsTabBar final : public QTabBar {
 public:
  explicit SettingsTabBar(const std::vector<view::Tab>& tabs, QWidget* parent = nullptr);

 protected:
  [[nodiscard]] QSize tabSizeHint(int index) const override;
  [[nodiscard]] QSize minimumTabSizeHint(int index) const override { return tabSizeHint(index); }
  void changeEvent(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;

 private:
  void paintTab(QPainter& painter, int index) const;

  /// By place.
  std::vector<std::string> symbols_;
  std::vector<QString> labels_;
};

}  // namespace valdrix::desktop
