#include "desktop/x11/X11Cursor.h"

#include <xcb/xcb_cursor.h>

namespace valdrix::desktop {

namespace {

struct FreeContext {
  void operator()(xcb_cursor_context_t* context) const { xcb_cursor_context_free(context); }
};

xcb_cursor_t loadHand(X11Connection& connection) {
  xcb_cursor_context_t* made = nullptr;
  if (xcb_cursor_context_new(connection.get(), &connection.screen(), &made) < 0)
    return XCB_CURSOR_NONE;
  const std::unique_ptr<xcb_cursor_context_t, FreeContext> context(made);
  // The name that style sheets use, and that of the X cursor font for themes that know only those.
  for (const char* name : {"pointer", "hand2"})
    if (const auto cursor = xcb_cursor_load_cursor(context.get(), name)) return cursor;
  return XCB_CURSOR_NONE;
}

}  // namespace

X11Cursor::~X11Cursor() {
  if (hand_) xcb_free_cursor(connection_.get(), hand_);
}

void X11Cursor::pushPointingHand() {
  if (++pushes_ == 1) observers_.notify();
}

void X11Cursor::pop() {
  if (pushes_ == 0) return;
  if (--pushes_ == 0) observers_.notify();
}

Token X11Cursor::observeChanges(std::function<void()> block) {
  return observers_.add(std::move(block));
}

xcb_cursor_t X11Cursor::shape() {
  if (!isPointingHand() || !connection_.isUsable()) return XCB_CURSOR_NONE;
  if (!hand_) hand_ = loadHand(connection_);
  return hand_;
}

}  // namespace valdrix::desktop
