#pragma once

#include <functional>
#include <memory>

#include <QIcon>
#include <QSystemTrayIcon>

#include "desktop/tray/StatusNotifierItem.h"

namespace valdrix::desktop {

/// The item in the tray of an X server (XEMBED), for as long as it lives. To be made only where
/// such a tray is and no bar on the message bus, since Qt would take that, once for the whole
/// process.
class X11TrayIcon {
 public:
  /// `hasBus`: whether the session says where its message bus is. `showMenu` is called with the
  /// place, in points, when either button is clicked.
  X11TrayIcon(const TrayLook& look, bool hasBus, std::function<void(QPoint)> showMenu);

 private:
  std::unique_ptr<QSystemTrayIcon> icon_;
};

}  // namespace valdrix::desktop
