#pragma once

#include <QPoint>

#include "desktop/x11/X11Connection.h"
#include "desktop/x11/X11Pointer.h"

namespace valdrix::desktop {

class X11Manager;

/// The window above all others that a compositing manager draws on. Where the manager's own bar is,
/// it takes the pointer there, even from a panel that it draws over its bar. So while the pointer
/// is over it, and only then, all motion is watched.
class X11Overlay {
 public:
  /// All must outlive it.
  X11Overlay(X11Connection& connection, X11Pointer& pointer, X11Manager& compositing);

  /// Looks, while it is not known yet, whether it takes the pointer at that pixel of the root.
  void look(QPoint place);

 private:
  void handle(const xcb_generic_event_t& event);
  [[nodiscard]] bool isInTree(xcb_window_t window);

  X11Connection& connection_;
  X11Pointer& pointer_;
  X11Manager& compositing_;
  xcb_window_t window_ = XCB_WINDOW_NONE;
  Token watch_;
  Token eventHandler_;
  Token compositingObserver_;
};

}  // namespace valdrix::desktop
