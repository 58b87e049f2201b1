#pragma once

#include <functional>

#include "desktop/x11/X11Connection.h"
#include "observation/Listeners.h"

namespace valdrix::desktop {

/// Whether a compositing manager blends windows with what lies below them. Without the XFixes
/// extension the answer is that of the start.
class X11Compositing {
 public:
  /// `connection` must outlive it.
  explicit X11Compositing(X11Connection& connection);

  [[nodiscard]] bool isActive() const { return isActive_; }
  [[nodiscard]] Token observeChanges(std::function<void()> block);

 private:
  void watch();
  void setActive(bool isActive);

  X11Connection& connection_;
  xcb_atom_t selection_ = XCB_ATOM_NONE;
  bool isActive_ = false;
  Listeners<> observers_;
  Token eventHandler_;
};

}  // namespace valdrix::desktop
