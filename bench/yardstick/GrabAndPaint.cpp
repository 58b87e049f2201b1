// The fastest way from a key to a pixel: grabs one key and at each press paints one rectangle of
// the indicator's size in the other of two colours.
// Usage: yardstick_grab_and_paint KEYCODE X Y

#include <cstdlib>
#include <memory>

#include <xcb/xcb.h>

namespace {

struct Disconnect {
  void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};
struct Free {
  void operator()(void* memory) const { std::free(memory); }
};

constexpr std::uint16_t width = 280;
constexpr std::uint16_t height = 68;
constexpr std::uint32_t colors[] = {0x000000, 0xFFFFFF};

/// Whether the key was free.
bool grab(xcb_connection_t* connection, xcb_window_t root, xcb_keycode_t key) {
  const auto cookie = xcb_grab_key_checked(connection, 0, root, XCB_MOD_MASK_ANY, key,
                                           XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
  return !std::unique_ptr<xcb_generic_error_t, Free>(xcb_request_check(connection, cookie));
}

xcb_window_t showWindow(xcb_connection_t* connection, const xcb_screen_t& screen, std::int16_t x,
                        std::int16_t y) {
  const auto window = xcb_generate_id(connection);
  const std::uint32_t values[] = {colors[0], 1};
  xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, screen.root, x, y, width, height, 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, screen.root_visual,
                    XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, values);
  xcb_map_window(connection, window);
  return window;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) return 2;
  const std::unique_ptr<xcb_connection_t, Disconnect> owner(xcb_connect(nullptr, nullptr));
  auto* connection = owner.get();
  if (xcb_connection_has_error(connection)) return 1;
  const auto& screen = *xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
  if (!grab(connection, screen.root, static_cast<xcb_keycode_t>(std::atoi(argv[1])))) return 1;
  const auto window = showWindow(connection, screen, static_cast<std::int16_t>(std::atoi(argv[2])),
                                 static_cast<std::int16_t>(std::atoi(argv[3])));
  const auto graphics = xcb_generate_id(connection);
  xcb_create_gc(connection, graphics, window, 0, nullptr);
  xcb_flush(connection);

  unsigned presses = 0;
  while (const std::unique_ptr<xcb_generic_event_t, Free> event{xcb_wait_for_event(connection)}) {
    if ((event->response_type & 0x7F) != XCB_KEY_PRESS) continue;
    const xcb_rectangle_t rectangle{0, 0, width, height};
    xcb_change_gc(connection, graphics, XCB_GC_FOREGROUND, &colors[++presses % 2]);
    xcb_poly_fill_rectangle(connection, window, graphics, 1, &rectangle);
    xcb_flush(connection);
  }
  return 0;
}
