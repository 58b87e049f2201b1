#include "desktop/wayland/WaylandCursor.h"

#include <array>
#include <cstdint>

#include <QByteArray>

namespace valdrix::desktop {

void WaylandCursor::pushPointingHand() {
  if (++pushes_ == 1) show();
}

void WaylandCursor::pop() {
  if (pushes_ == 0) return;
  if (--pushes_ == 0) show();
}

void WaylandCursor::entered(wl_pointer* pointer, std::uint32_t serial, int scale) {
  pointer_ = pointer;
  serial_ = serial;
  scale_ = scale;
  show();
}

void WaylandCursor::left() { pointer_ = nullptr; }

// Reading a theme takes long, and most panels are never entered.
void WaylandCursor::loadTheme() {
  if (theme_ && themeScale_ == scale_) return;
  constexpr int usualSize = 24;
  bool isNumber = false;
  const int chosen = qgetenv("XCURSOR_SIZE").toInt(&isNumber);
  const int size = isNumber && chosen > 0 ? chosen : usualSize;
  const QByteArray name = qgetenv("XCURSOR_THEME");
  theme_.reset(wl_cursor_theme_load(name.isEmpty() ? nullptr : name.constData(), size * scale_,
                                    connection_.shm()));
  themeScale_ = scale_;
}

wl_cursor_image* WaylandCursor::image() const {
  if (!theme_) return nullptr;
  // The names that style sheets use, and those of the X cursor font for themes that know only
  // those.
  using Names = std::array<const char*, 2>;
  for (const char* name : pushes_ > 0 ? Names{"pointer", "hand2"} : Names{"default", "left_ptr"})
    if (const auto* cursor = wl_cursor_theme_get_cursor(theme_.get(), name))
      return cursor->images[0];
  return nullptr;
}

void WaylandCursor::show() {
  if (!pointer_ || !connection_.isUsable()) return;
  loadTheme();
  auto* const shape = image();
  if (!shape) return;
  if (!surface_) surface_.reset(wl_compositor_create_surface(connection_.compositor()));
  const auto part = [&](std::uint32_t pixels) { return static_cast<int>(pixels) / scale_; };
  wl_surface_set_buffer_scale(surface_.get(), scale_);
  wl_surface_attach(surface_.get(), wl_cursor_image_get_buffer(shape), 0, 0);
  wl_surface_damage(surface_.get(), 0, 0, INT32_MAX, INT32_MAX);
  wl_surface_commit(surface_.get());
  wl_pointer_set_cursor(pointer_, serial_, surface_.get(), part(shape->hotspot_x),
                        part(shape->hotspot_y));
}

}  // namespace valdrix::desktop
