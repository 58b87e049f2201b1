#pragma once

#include <functional>
#include <memory>

#include <QPoint>

#include "view/Menu.h"

class QMenu;

namespace valdrix::desktop {

/// The menu as this process draws it itself: where no bar does, and where the notch is what was
/// clicked. Needs a QApplication.
class TrayMenu {
 public:
  /// `aboutToShow` is called each time before it opens; it may set a new menu.
  explicit TrayMenu(std::function<void()> aboutToShow);
  ~TrayMenu();
  TrayMenu(const TrayMenu&) = delete;
  TrayMenu& operator=(const TrayMenu&) = delete;

  /// Whether it can be opened at any place. A Wayland compositor opens menus for windows of their
  /// program only, and takes one without for a window like any other.
  [[nodiscard]] static bool canPopUp();

  /// Also while it is open: the lines that stay keep their places in it.
  void setMenu(const view::Menu& menu);
  /// Opens it at that place, in points from the top left of the screens, and does not wait.
  /// `onClosed` is called once it is closed again.
  void popUp(QPoint position, std::function<void()> onClosed = {});

 private:
  void fill();

  std::function<void()> aboutToShow_;
  std::function<void()> onClosed_;
  view::Menu content_;
  /// From the first time that it is opened.
  std::unique_ptr<QMenu> menu_;
};

}  // namespace valdrix::desktop
