#pragma once

#include <QObject>

#include "view/Menu.h"

class QKeyEvent;

namespace valdrix::desktop {

/// The shortcuts of a menu's commands, in every window of the program: the menu itself is seldom on
/// screen. Needs a QApplication; main thread only.
class MenuKeys final : private QObject {
 public:
  MenuKeys();

  void setMenu(const view::Menu& menu) { menu_ = menu; }

 private:
  bool eventFilter(QObject* object, QEvent* event) override;
  [[nodiscard]] bool press(const QKeyEvent& event) const;

  view::Menu menu_;
};

}  // namespace valdrix::desktop
