#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "desktop/x11/X11Connection.h"

namespace valdrix::desktop {

/// Brings windows of this program to the front because the user has just asked for it. Window
/// managers refuse that to programs that ask with the time of an older input, and our own input may
/// lie hours back: what the user pressed went to a bar, a terminal or a launcher.
class X11Activation {
 public:
  /// `connection` must outlive it.
  explicit X11Activation(X11Connection& connection);
  ~X11Activation();
  X11Activation(const X11Activation&) = delete;
  X11Activation& operator=(const X11Activation&) = delete;

  /// Asks the window manager for it, on the workspace where the window is, with the server's time,
  /// as soon as that is known. The window may have been mapped just before.
  void bringToFront(xcb_window_t window);

 private:
  void ask(xcb_timestamp_t time);
  [[nodiscard]] std::optional<std::uint32_t> cardinal(xcb_window_t window, std::string_view name);
  /// Sends the window manager a message about `window`.
  void tell(xcb_window_t window, std::string_view wish, std::uint32_t first, std::uint32_t second);

  X11Connection& connection_;
  /// What the server's time is asked with.
  xcb_window_t clock_ = XCB_WINDOW_NONE;
  xcb_window_t wanted_ = XCB_WINDOW_NONE;
  Token eventHandler_;
};

}  // namespace valdrix::desktop
