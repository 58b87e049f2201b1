#include "desktop/x11/X11Activation.h"

#include <utility>

namespace valdrix::desktop {

namespace {

/// What the Extended Window Manager Hints call a direct wish of the user.
constexpr std::uint32_t userSource = 2;

}  // namespace

X11Activation::X11Activation(X11Connection& connection) : connection_(connection) {
  if (!connection_.isUsable()) return;
  clock_ = xcb_generate_id(connection_.get());
  const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
  xcb_create_window(connection_.get(), 0, clock_, connection_.root(), -1, -1, 1, 1, 0,
                    XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &mask);
  eventHandler_ = connection_.addEventHandler([this](const xcb_generic_event_t& event) {
    if (eventType(event) != XCB_PROPERTY_NOTIFY) return;
    const auto& change = eventAs<xcb_property_notify_event_t>(event);
    if (change.window == clock_) ask(change.time);
  });
}

X11Activation::~X11Activation() {
  if (clock_ != XCB_WINDOW_NONE) xcb_destroy_window(connection_.get(), clock_);
}

void X11Activation::bringToFront(xcb_window_t window) {
  if (clock_ == XCB_WINDOW_NONE) return;
  wanted_ = window;
  // Every change is told with the time, also one to the same value.
  xcb_change_property(connection_.get(), XCB_PROP_MODE_REPLACE, clock_, XCB_ATOM_WM_NAME,
                      XCB_ATOM_STRING, 8, 0, nullptr);
  connection_.flush();
}

void X11Activation::ask(xcb_timestamp_t time) {
  const auto window = std::exchange(wanted_, XCB_WINDOW_NONE);
  if (window == XCB_WINDOW_NONE) return;
  xcb_client_message_event_t message{};
  message.response_type = XCB_CLIENT_MESSAGE;
  message.format = 32;
  message.window = window;
  message.type = connection_.atom("_NET_ACTIVE_WINDOW");
  message.data.data32[0] = userSource;
  message.data.data32[1] = time;
  xcb_send_event(connection_.get(), 0, connection_.root(),
                 XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                 reinterpret_cast<const char*>(&message));
  connection_.flush();
}

}  // namespace valdrix::desktop
