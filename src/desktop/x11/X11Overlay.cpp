#include "desktop/x11/X11Overlay.h"

#include <algorithm>

#include "desktop/x11/X11Manager.h"

namespace valdrix::desktop {

X11Overlay::X11Overlay(X11Connection& connection, X11Pointer& pointer, X11Manager& compositing)
    : connection_(connection), pointer_(pointer), compositing_(compositing) {
  if (!connection_.isUsable()) return;
  eventHandler_ =
      connection_.addEventHandler([this](const xcb_generic_event_t& event) { handle(event); });
  compositingObserver_ = compositing_.observeChanges([this] {
    window_ = XCB_WINDOW_NONE;
    watch_.reset();
  });
}

void X11Overlay::look(QPoint place) {
  if (window_ || !compositing_.isActive()) return;
  const auto root = connection_.root();
  const auto answer = connection_.reply(
      xcb_translate_coordinates_reply,
      xcb_translate_coordinates(connection_.get(), root, root, static_cast<std::int16_t>(place.x()),
                                static_cast<std::int16_t>(place.y())));
  if (!answer || !answer->child || isInTree(answer->child)) return;
  window_ = answer->child;
  const std::uint32_t mask = XCB_EVENT_MASK_ENTER_WINDOW | XCB_EVENT_MASK_LEAVE_WINDOW;
  xcb_change_window_attributes(connection_.get(), window_, XCB_CW_EVENT_MASK, &mask);
  connection_.flush();
}

// The server leaves the overlay window out when it is asked for the root's children.
bool X11Overlay::isInTree(xcb_window_t window) {
  const auto tree = connection_.reply(xcb_query_tree_reply,
                                      xcb_query_tree(connection_.get(), connection_.root()));
  if (!tree) return true;
  const auto* first = xcb_query_tree_children(tree.get());
  const auto* end = first + xcb_query_tree_children_length(tree.get());
  return std::find(first, end, window) != end;
}

void X11Overlay::handle(const xcb_generic_event_t& event) {
  const auto type = eventType(event);
  if (!window_ || (type != XCB_ENTER_NOTIFY && type != XCB_LEAVE_NOTIFY)) return;
  if (eventAs<xcb_enter_notify_event_t>(event).event != window_) return;
  watch_ = type == XCB_ENTER_NOTIFY ? pointer_.watchMotion() : Token();
  pointer_.expectMotion();
}

}  // namespace valdrix::desktop
