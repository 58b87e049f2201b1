#pragma once

#include <functional>

#include "desktop/x11/X11Connection.h"
#include "observation/Listeners.h"
#include "platform/Cursor.h"

namespace valdrix::desktop {

/// The pointer's shape over our panels, from the user's cursor theme.
class X11Cursor final : public platform::Cursor {
 public:
  /// `connection` must outlive it.
  explicit X11Cursor(X11Connection& connection) : connection_(connection) {}
  ~X11Cursor() override;

  void pushPointingHand() override;
  void pop() override;

  [[nodiscard]] bool isPointingHand() const { return pushes_ > 0; }
  [[nodiscard]] Token observeChanges(std::function<void()> block);
  /// The hand while one is asked for, else none, which means that of whatever lies around.
  [[nodiscard]] xcb_cursor_t shape();

 private:
  X11Connection& connection_;
  int pushes_ = 0;
  xcb_cursor_t hand_ = XCB_CURSOR_NONE;
  Listeners<> observers_;
};

}  // namespace valdrix::desktop
