// A mouse and a keyboard for a Wayland compositor, where it lets programs have them: KWin's fake
// input, or wlroots' virtual pointer, which is a mouse alone.
//
// wayland-input WIDTH HEIGHT reads lines and answers each with "ok" when the compositor has seen
// it:
//   move X Y              in pixels of the screen
//   button CODE PRESSED   codes of the kernel; 1 or 0
//   key CODE PRESSED

#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <wayland-client.h>

#include "fake-input.h"
#include "wlr-virtual-pointer-unstable-v1.h"

static struct org_kde_kwin_fake_input* fake;
static struct zwlr_virtual_pointer_manager_v1* pointers;
static struct zwlr_virtual_pointer_v1* mouse;
static struct wl_seat* seat;
static uint32_t width, height;

static void take(void* data, struct wl_registry* registry, uint32_t name, const char* interface,
                 uint32_t version) {
  (void)data, (void)version;
  if (strcmp(interface, org_kde_kwin_fake_input_interface.name) == 0)
    fake = wl_registry_bind(registry, name, &org_kde_kwin_fake_input_interface, 4);
  if (strcmp(interface, zwlr_virtual_pointer_manager_v1_interface.name) == 0)
    pointers = wl_registry_bind(registry, name, &zwlr_virtual_pointer_manager_v1_interface, 1);
  if (strcmp(interface, wl_seat_interface.name) == 0 && !seat)
    seat = wl_registry_bind(registry, name, &wl_seat_interface, 1);
}

static void drop(void* data, struct wl_registry* registry, uint32_t name) {
  (void)data, (void)registry, (void)name;
}

static void move(double x, double y) {
  if (fake) {
    org_kde_kwin_fake_input_pointer_motion_absolute(fake, wl_fixed_from_double(x),
                                                    wl_fixed_from_double(y));
    return;
  }
  // In halves of pixels, to come to lie inside of the pixel.
  zwlr_virtual_pointer_v1_motion_absolute(mouse, 0, (uint32_t)(2 * x) + 1, (uint32_t)(2 * y) + 1,
                                          2 * width, 2 * height);
  zwlr_virtual_pointer_v1_frame(mouse);
}

static void press(uint32_t code, uint32_t pressed) {
  if (fake) {
    org_kde_kwin_fake_input_button(fake, code, pressed);
    return;
  }
  zwlr_virtual_pointer_v1_button(mouse, 0, code, pressed);
  zwlr_virtual_pointer_v1_frame(mouse);
}

static int obey(const char* line) {
  char word[16];
  double first, second;
  if (sscanf(line, "%15s %lf %lf", word, &first, &second) != 3) return 0;
  if (strcmp(word, "move") == 0)
    move(first, second);
  else if (strcmp(word, "button") == 0)
    press((uint32_t)first, (uint32_t)second);
  else if (strcmp(word, "key") == 0 && fake)
    org_kde_kwin_fake_input_keyboard_key(fake, (uint32_t)first, (uint32_t)second);
  else
    return 0;
  return 1;
}

int main(int count, char** words) {
  static const struct wl_registry_listener listener = {take, drop};
  struct wl_display* display = wl_display_connect(NULL);
  if (count != 3 || !display) return 2;
  width = (uint32_t)atoi(words[1]);
  height = (uint32_t)atoi(words[2]);
  wl_registry_add_listener(wl_display_get_registry(display), &listener, NULL);
  wl_display_roundtrip(display);
  if (fake)
    org_kde_kwin_fake_input_authenticate(fake, "desktops", "measurements");
  else if (pointers)
    mouse = zwlr_virtual_pointer_manager_v1_create_virtual_pointer(pointers, seat);
  else
    return 3;
  char line[128];
  while (wl_display_roundtrip(display) >= 0 && fgets(line, sizeof line, stdin)) {
    const int obeyed = obey(line);
    if (wl_display_roundtrip(display) < 0) return 1;
    printf("%s\n", obeyed ? "ok" : "what?");
    fflush(stdout);
  }
  return 0;
}
