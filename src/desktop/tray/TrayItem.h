#pragma once

#include <functional>
#include <optional>

#include <QPoint>

#include "desktop/session/SessionBus.h"
#include "desktop/tray/DbusMenu.h"
#include "desktop/tray/StatusNotifierItem.h"
#include "desktop/tray/StatusNotifierRegistration.h"
#include "desktop/tray/TrayMenu.h"
#include "desktop/tray/X11TrayIcon.h"
#include "view/Menu.h"

namespace valdrix::desktop {

/// An item with a menu in the desktop's tray: in a bar that shows status notifier items, or else in
/// an X server's tray. It comes and goes with them, and its menu can also be opened anywhere. Needs
/// a QApplication; main thread only.
class TrayItem {
 public:
  struct Handlers {
    /// The menu is about to open somewhere; it may be set anew.
    std::function<void()> aboutToShow;
    /// The item was clicked in a bar that keeps its menu for another click, or the menu was asked
    /// for where it cannot be opened.
    std::function<void()> activate;
  };
  enum class Place { nowhere, statusNotifierHost, x11Tray };

  /// `bus` must outlive it.
  TrayItem(SessionBus& bus, TrayLook look, Handlers handlers);
  TrayItem(const TrayItem&) = delete;
  TrayItem& operator=(const TrayItem&) = delete;

  void setMenu(const view::Menu& menu);
  /// Says whether there is a tray on the X server.
  void setHasX11Tray(bool hasX11Tray);
  /// Opens the menu at that place, in points from the top left of the screens, or activates the
  /// item where it cannot be opened. `onClosed` is called once the menu is closed again.
  void popUpMenu(QPoint position, std::function<void()> onClosed = {});

  /// Where it is shown.
  [[nodiscard]] Place place() const;

 private:
  void choosePlace();
  [[nodiscard]] bool belongsInX11Tray() const;

  SessionBus& bus_;
  const TrayLook look_;
  const std::function<void()> activate_;
  TrayMenu ownMenu_;
  DbusMenu busMenu_;
  StatusNotifierItem item_;
  bool hasX11Tray_ = false;
  std::optional<X11TrayIcon> x11Icon_;
  StatusNotifierRegistration registration_;
};

}  // namespace valdrix::desktop
