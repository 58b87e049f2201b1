#include "tests/support/WaylandTestClient.h"

#include <cmath>
#include <cstring>
#include <unistd.h>

#include <linux/input-event-codes.h>
#include <sys/mman.h>
#include <wayland-client.h>
#include <wayland-protocols/wlr-virtual-pointer-unstable-v1.h>
#include <wayland-protocols/xdg-shell.h>

namespace valdrix::tests {

namespace {

// Finer than what the compositor reckons with, and a little beyond the edge of the pixel, so that
// rounding does not land in the one before.
constexpr std::uint32_t parts = 1024;

}  // namespace

struct WaylandTestClient::Connection {
  wl_display* display = wl_display_connect(nullptr);
  wl_registry* registry = nullptr;
  wl_compositor* compositor = nullptr;
  wl_shm* shm = nullptr;
  wl_seat* seat = nullptr;
  xdg_wm_base* shell = nullptr;
  zwlr_virtual_pointer_manager_v1* pointers = nullptr;
  zwlr_virtual_pointer_v1* mouse = nullptr;
  wl_pointer* pointer = nullptr;
  wl_surface* surface = nullptr;
  xdg_surface* role = nullptr;
  xdg_toplevel* window = nullptr;
  QSize extent;
  QSize size;
  bool isReady = false;
  int presses = 0;

  static Connection& self(void* data) { return *static_cast<Connection*>(data); }

  template <class T>
  void take(T*& place, std::uint32_t name, const char* offered, const wl_interface& interface,
            std::uint32_t version) {
    if (std::strcmp(offered, interface.name) == 0)
      place = static_cast<T*>(wl_registry_bind(registry, name, &interface, version));
  }

  void start() {
    static constexpr wl_registry_listener listener{
        .global =
            [](void* data, wl_registry*, std::uint32_t name, const char* interface, std::uint32_t) {
              auto& me = self(data);
              me.take(me.compositor, name, interface, wl_compositor_interface, 4);
              me.take(me.shm, name, interface, wl_shm_interface, 1);
              me.take(me.seat, name, interface, wl_seat_interface, 1);
              me.take(me.shell, name, interface, xdg_wm_base_interface, 1);
              me.take(me.pointers, name, interface, zwlr_virtual_pointer_manager_v1_interface, 1);
            },
        .global_remove = [](void*, wl_registry*, std::uint32_t) {},
    };
    registry = wl_display_get_registry(display);
    wl_registry_add_listener(registry, &listener, this);
    wl_display_roundtrip(display);
    mouse = zwlr_virtual_pointer_manager_v1_create_virtual_pointer(pointers, seat);
    wl_display_roundtrip(display);
    listen();
    openWindow();
    while (!isReady && wl_display_dispatch(display) >= 0)
      ;
  }

  void listen() {
    // Later versions have more events, which are not asked for.
    static const wl_pointer_listener listener = [] {
      wl_pointer_listener result{};
      result.enter = [](void*, wl_pointer*, std::uint32_t, wl_surface*, wl_fixed_t, wl_fixed_t) {};
      result.leave = [](void*, wl_pointer*, std::uint32_t, wl_surface*) {};
      result.motion = [](void*, wl_pointer*, std::uint32_t, wl_fixed_t, wl_fixed_t) {};
      result.button = [](void* data, wl_pointer*, std::uint32_t, std::uint32_t,
                         std::uint32_t button, std::uint32_t state) {
        if (button == BTN_LEFT && state == WL_POINTER_BUTTON_STATE_PRESSED) ++self(data).presses;
      };
      result.axis = [](void*, wl_pointer*, std::uint32_t, std::uint32_t, wl_fixed_t) {};
      return result;
    }();
    pointer = wl_seat_get_pointer(seat);
    wl_pointer_add_listener(pointer, &listener, this);
  }

  void openWindow() {
    static constexpr xdg_wm_base_listener shellListener{
        .ping = [](void*, xdg_wm_base* base, std::uint32_t serial) {
          xdg_wm_base_pong(base, serial);
        }};
    static const xdg_toplevel_listener windowListener = [] {
      xdg_toplevel_listener result{};
      result.configure = [](void* data, xdg_toplevel*, std::int32_t width, std::int32_t height,
                            wl_array*) {
        self(data).size = {width, height};
      };
      result.close = [](void*, xdg_toplevel*) {};
      return result;
    }();
    static constexpr xdg_surface_listener roleListener{
        .configure = [](void* data, xdg_surface* configured, std::uint32_t serial) {
          xdg_surface_ack_configure(configured, serial);
          self(data).paint();
        }};
    xdg_wm_base_add_listener(shell, &shellListener, this);
    surface = wl_compositor_create_surface(compositor);
    role = xdg_wm_base_get_xdg_surface(shell, surface);
    xdg_surface_add_listener(role, &roleListener, this);
    window = xdg_surface_get_toplevel(role);
    xdg_toplevel_add_listener(window, &windowListener, this);
    wl_surface_commit(surface);
  }

  void paint() {
    if (size.isEmpty()) size = extent;
    const int length = size.width() * size.height() * 4;
    const int file = memfd_create("background", MFD_CLOEXEC);
    if (ftruncate(file, length) != 0) return;
    void* const pixels = mmap(nullptr, static_cast<std::size_t>(length), PROT_READ | PROT_WRITE,
                              MAP_SHARED, file, 0);
    std::fill_n(static_cast<std::uint32_t*>(pixels), length / 4, 0xFF0000FF);
    munmap(pixels, static_cast<std::size_t>(length));
    auto* const pool = wl_shm_create_pool(shm, file, length);
    auto* const buffer = wl_shm_pool_create_buffer(pool, 0, size.width(), size.height(),
                                                   size.width() * 4, WL_SHM_FORMAT_XRGB8888);
    wl_shm_pool_destroy(pool);
    close(file);
    wl_surface_attach(surface, buffer, 0, 0);
    wl_surface_damage(surface, 0, 0, size.width(), size.height());
    wl_surface_commit(surface);
    wl_buffer_destroy(buffer);
    isReady = true;
  }
};

WaylandTestClient::WaylandTestClient(QSize extent) : connection_(std::make_unique<Connection>()) {
  connection_->extent = extent;
  if (!connection_->display) return;
  connection_->start();
  roundTrip();
}

WaylandTestClient::~WaylandTestClient() {
  auto* const display = connection_->display;
  if (!display) return;
  for (void* object :
       {static_cast<void*>(connection_->window), static_cast<void*>(connection_->role),
        static_cast<void*>(connection_->surface), static_cast<void*>(connection_->pointer),
        static_cast<void*>(connection_->mouse), static_cast<void*>(connection_->pointers),
        static_cast<void*>(connection_->shell), static_cast<void*>(connection_->seat),
        static_cast<void*>(connection_->shm), static_cast<void*>(connection_->compositor),
        static_cast<void*>(connection_->registry)})
    if (object) wl_proxy_destroy(static_cast<wl_proxy*>(object));
  wl_display_disconnect(display);
}

bool WaylandTestClient::isReady() const { return connection_->isReady; }

void WaylandTestClient::roundTrip() { wl_display_roundtrip(connection_->display); }

void WaylandTestClient::movePointer(QPointF to) {
  const auto place = [](double value) {
    return static_cast<std::uint32_t>(std::lround(value * parts)) + 1;
  };
  zwlr_virtual_pointer_v1_motion_absolute(connection_->mouse, 0, place(to.x()), place(to.y()),
                                          place(connection_->extent.width()) - 1,
                                          place(connection_->extent.height()) - 1);
  zwlr_virtual_pointer_v1_frame(connection_->mouse);
  roundTrip();
}

void WaylandTestClient::setButton(std::uint32_t button, bool isPressed) {
  zwlr_virtual_pointer_v1_button(
      connection_->mouse, 0, button,
      isPressed ? WL_POINTER_BUTTON_STATE_PRESSED : WL_POINTER_BUTTON_STATE_RELEASED);
  zwlr_virtual_pointer_v1_frame(connection_->mouse);
  roundTrip();
}

int WaylandTestClient::presses() {
  roundTrip();
  return connection_->presses;
}

}  // namespace valdrix::tests
