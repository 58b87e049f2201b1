#include "tests/e2e/BackgroundWindow.h"

#include <array>
#include <cstdint>

namespace valdrix::tests {

BackgroundWindow::BackgroundWindow(VirtualDisplay& display)
    : connection_(xcb_connect(display.name().c_str(), nullptr)) {
  auto* const connection = connection_.get();
  const auto window = xcb_generate_id(connection);
  const std::array<std::uint32_t, 3> values = {color, 1, XCB_EVENT_MASK_BUTTON_PRESS};
  xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, display.root(), 0, 0,
                    static_cast<std::uint16_t>(display.size().width()),
                    static_cast<std::uint16_t>(display.size().height()), 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                    XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK,
                    values.data());
  xcb_map_window(connection, window);
  const std::uint32_t below = XCB_STACK_MODE_BELOW;
  xcb_configure_window(connection, window, XCB_CONFIG_WINDOW_STACK_MODE, &below);
  (void)presses();
}

int BackgroundWindow::presses() {
  auto* const connection = connection_.get();
  // The answer comes behind every event that the server has sent so far.
  const auto done = desktop::xcbOwned(
      xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
  while (const auto event = desktop::xcbOwned(xcb_poll_for_event(connection)))
    if ((event->response_type & 0x7F) == XCB_BUTTON_PRESS) ++presses_;
  return presses_;
}

}  // namespace valdrix::tests
