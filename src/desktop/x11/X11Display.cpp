#include "desktop/x11/X11Display.h"

#include <memory>

#include <xcb/xcb.h>

namespace valdrix::desktop {

bool canConnectToX11Display() {
  const std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> connection(
      xcb_connect(nullptr, nullptr), &xcb_disconnect);
  return xcb_connection_has_error(connection.get()) == 0;
}

}  // namespace valdrix::desktop
