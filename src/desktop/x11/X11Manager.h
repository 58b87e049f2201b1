#pragma once

#include <functional>
#include <string_view>

#include "desktop/x11/X11Connection.h"
#include "observation/Listeners.h"

namespace valdrix::desktop {

/// Whether some client is the screen's manager of one kind, which it says by owning a selection.
/// Without the XFixes extension the answer is that of the start.
class X11Manager {
 public:
  /// A selection's name without the screen's number. Blends windows with what lies below them.
  static constexpr std::string_view compositing = "_NET_WM_CM_S";
  /// Shows other programs' icons.
  static constexpr std::string_view tray = "_NET_SYSTEM_TRAY_S";
  /// Says what programs should look like.
  static constexpr std::string_view settings = "_XSETTINGS_S";

  /// `connection` must outlive it.
  X11Manager(X11Connection& connection, std::string_view kind);

  [[nodiscard]] bool isActive() const { return owner_ != XCB_WINDOW_NONE; }
  /// The manager's window; none without a manager.
  [[nodiscard]] xcb_window_t owner() const { return owner_; }
  /// Calls `block` when there is another manager, or none any more.
  [[nodiscard]] Token observeChanges(std::function<void()> block);

 private:
  void watch();
  void setOwner(xcb_window_t owner);

  X11Connection& connection_;
  xcb_atom_t selection_ = XCB_ATOM_NONE;
  xcb_window_t owner_ = XCB_WINDOW_NONE;
  Listeners<> observers_;
  Token eventHandler_;
};

}  // namespace valdrix::desktop
