// A window born fullscreen on a Wayland compositor, which tells on its output what reaches it:
//   size W H | click X Y | key CODE | focus in | focus out
// Pixels of the window, which are the screen's; codes of the kernel.

#define _GNU_SOURCE
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <sys/mman.h>
#include <wayland-client.h>

#include "xdg-shell.h"

static const uint32_t color = 0xFF3366AA;

static struct wl_compositor* compositor;
static struct wl_shm* memory;
static struct wl_seat* seat;
static struct xdg_wm_base* shell;
static struct wl_surface* surface;
static int32_t width = 640, height = 400;
static double pointer_x, pointer_y;

static void take(void* data, struct wl_registry* registry, uint32_t name, const char* interface,
                 uint32_t version) {
  (void)data, (void)version;
  if (strcmp(interface, wl_compositor_interface.name) == 0)
    compositor = wl_registry_bind(registry, name, &wl_compositor_interface, 4);
  if (strcmp(interface, wl_shm_interface.name) == 0)
    memory = wl_registry_bind(registry, name, &wl_shm_interface, 1);
  if (strcmp(interface, wl_seat_interface.name) == 0 && !seat)
    seat = wl_registry_bind(registry, name, &wl_seat_interface, 1);
  if (strcmp(interface, xdg_wm_base_interface.name) == 0)
    shell = wl_registry_bind(registry, name, &xdg_wm_base_interface, 1);
}

static void drop(void* data, struct wl_registry* registry, uint32_t name) {
  (void)data, (void)registry, (void)name;
}

static void paint(void) {
  const int32_t length = width * height * 4;
  const int file = memfd_create("window", MFD_CLOEXEC);
  if (file < 0 || ftruncate(file, length) != 0) exit(1);
  uint32_t* pixels = mmap(NULL, (size_t)length, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
  if (pixels == MAP_FAILED) exit(1);
  for (int32_t i = 0; i < width * height; ++i) pixels[i] = color;
  munmap(pixels, (size_t)length);
  struct wl_shm_pool* pool = wl_shm_create_pool(memory, file, length);
  struct wl_buffer* buffer =
      wl_shm_pool_create_buffer(pool, 0, width, height, width * 4, WL_SHM_FORMAT_XRGB8888);
  wl_shm_pool_destroy(pool);
  close(file);
  wl_surface_attach(surface, buffer, 0, 0);
  wl_surface_damage(surface, 0, 0, width, height);
  wl_surface_commit(surface);
  printf("size %d %d\n", width, height);
}

static void configured(void* data, struct xdg_surface* role, uint32_t serial) {
  (void)data;
  xdg_surface_ack_configure(role, serial);
  paint();
}

static void resized(void* data, struct xdg_toplevel* window, int32_t w, int32_t h,
                    struct wl_array* states) {
  (void)data, (void)window, (void)states;
  if (w > 0 && h > 0) width = w, height = h;
}

static void closed(void* data, struct xdg_toplevel* window) {
  (void)data, (void)window;
  exit(0);
}

static void ping(void* data, struct xdg_wm_base* base, uint32_t serial) {
  (void)data;
  xdg_wm_base_pong(base, serial);
}

static void moved(void* data, struct wl_pointer* pointer, uint32_t time, wl_fixed_t x,
                  wl_fixed_t y) {
  (void)data, (void)pointer, (void)time;
  pointer_x = wl_fixed_to_double(x);
  pointer_y = wl_fixed_to_double(y);
}

static void entered(void* data, struct wl_pointer* pointer, uint32_t serial,
                    struct wl_surface* where, wl_fixed_t x, wl_fixed_t y) {
  (void)serial, (void)where;
  moved(data, pointer, 0, x, y);
}

static void left(void* data, struct wl_pointer* pointer, uint32_t serial,
                 struct wl_surface* where) {
  (void)data, (void)pointer, (void)serial, (void)where;
}

static void clicked(void* data, struct wl_pointer* pointer, uint32_t serial, uint32_t time,
                    uint32_t button, uint32_t state) {
  (void)data, (void)pointer, (void)serial, (void)time, (void)button;
  if (state) printf("click %d %d\n", (int)pointer_x, (int)pointer_y);
}

static void scrolled(void* data, struct wl_pointer* pointer, uint32_t time, uint32_t axis,
                     wl_fixed_t value) {
  (void)data, (void)pointer, (void)time, (void)axis, (void)value;
}

static void mapped(void* data, struct wl_keyboard* keyboard, uint32_t format, int32_t file,
                   uint32_t size) {
  (void)data, (void)keyboard, (void)format, (void)size;
  close(file);
}

static void focused(void* data, struct wl_keyboard* keyboard, uint32_t serial,
                    struct wl_surface* where, struct wl_array* keys) {
  (void)data, (void)keyboard, (void)serial, (void)where, (void)keys;
  printf("focus in\n");
}

static void unfocused(void* data, struct wl_keyboard* keyboard, uint32_t serial,
                      struct wl_surface* where) {
  (void)data, (void)keyboard, (void)serial, (void)where;
  printf("focus out\n");
}

static void typed(void* data, struct wl_keyboard* keyboard, uint32_t serial, uint32_t time,
                  uint32_t key, uint32_t state) {
  (void)data, (void)keyboard, (void)serial, (void)time;
  if (state == WL_KEYBOARD_KEY_STATE_PRESSED) printf("key %u\n", key);
}

static void shifted(void* data, struct wl_keyboard* keyboard, uint32_t serial, uint32_t pressed,
                    uint32_t latched, uint32_t locked, uint32_t group) {
  (void)data, (void)keyboard, (void)serial, (void)pressed, (void)latched, (void)locked, (void)group;
}

// A keyboard may come later, and go.
static void offered(void* data, struct wl_seat* from, uint32_t capabilities) {
  static const struct wl_pointer_listener pointer = {
      .enter = entered, .leave = left, .motion = moved, .button = clicked, .axis = scrolled};
  static const struct wl_keyboard_listener keyboard = {
      .keymap = mapped, .enter = focused, .leave = unfocused, .key = typed, .modifiers = shifted};
  static uint32_t taken;
  const uint32_t fresh = capabilities & ~taken;
  (void)data;
  if (fresh & WL_SEAT_CAPABILITY_POINTER)
    wl_pointer_add_listener(wl_seat_get_pointer(from), &pointer, NULL);
  if (fresh & WL_SEAT_CAPABILITY_KEYBOARD)
    wl_keyboard_add_listener(wl_seat_get_keyboard(from), &keyboard, NULL);
  taken |= fresh;
}

static void open_window(void) {
  static const struct xdg_wm_base_listener base = {ping};
  static const struct xdg_surface_listener surfaces = {configured};
  static const struct xdg_toplevel_listener windows = {.configure = resized, .close = closed};
  xdg_wm_base_add_listener(shell, &base, NULL);
  surface = wl_compositor_create_surface(compositor);
  struct xdg_surface* role = xdg_wm_base_get_xdg_surface(shell, surface);
  xdg_surface_add_listener(role, &surfaces, NULL);
  struct xdg_toplevel* window = xdg_surface_get_toplevel(role);
  xdg_toplevel_add_listener(window, &windows, NULL);
  xdg_toplevel_set_title(window, "desktops");
  xdg_toplevel_set_fullscreen(window, NULL);
  wl_surface_commit(surface);
}

int main(void) {
  static const struct wl_registry_listener listener = {take, drop};
  static const struct wl_seat_listener seats = {.capabilities = offered};
  struct wl_display* display = wl_display_connect(NULL);
  if (!display) return 2;
  setvbuf(stdout, NULL, _IOLBF, 0);
  wl_registry_add_listener(wl_display_get_registry(display), &listener, NULL);
  wl_display_roundtrip(display);
  if (!compositor || !memory || !seat || !shell) return 3;
  wl_seat_add_listener(seat, &seats, NULL);
  open_window();
  while (wl_display_dispatch(display) >= 0)
    ;
  return 0;
}
