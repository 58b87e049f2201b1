#include "desktop/x11/X11Activation.h"

#include <utility>

namespace valdrix::desktop {

namespace {

// Values of the Extended Window Manager Hints: a direct wish of the user, and a window that is seen
// on every workspace.
constexpr std::uint32_t userSource = 2;
constexpr std::uint32_t allWorkspaces = 0xFFFFFFFF;

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
  const auto workspace = cardinal(window, "_NET_WM_DESKTOP");
  // Some window managers only mark a window of another workspace.
  if (workspace && *workspace != allWorkspaces &&
      workspace != cardinal(connection_.root(), "_NET_CURRENT_DESKTOP"))
    tell(connection_.root(), "_NET_CURRENT_DESKTOP", *workspace, time);
  tell(window, "_NET_ACTIVE_WINDOW", userSource, time);
  connection_.flush();
}

std::optional<std::uint32_t> X11Activation::cardinal(xcb_window_t window, std::string_view name) {
  const auto property = connection_.reply(
      xcb_get_property_reply, xcb_get_property(connection_.get(), 0, window, connection_.atom(name),
                                               XCB_ATOM_CARDINAL, 0, 1));
  if (!property || xcb_get_property_value_length(property.get()) != sizeof(std::uint32_t))
    return std::nullopt;
  return *static_cast<const std::uint32_t*>(xcb_get_property_value(property.get()));
}

void X11Activation::tell(xcb_window_t window, std::string_view wish, std::uint32_t first,
                         std::uint32_t second) {
  xcb_client_message_event_t message{};
  message.response_type = XCB_CLIENT_MESSAGE;
  message.format = 32;
  message.window = window;
  message.type = connection_.atom(wish);
  message.data.data32[0] = first;
  message.data.data32[1] = second;
  xcb_send_event(connection_.get(), 0, connection_.root(),
                 XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                 reinterpret_cast<const char*>(&message));
}

}  // namespace valdrix::desktop
