#include "desktop/wayland/WaylandCursor.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

#include <QByteArray>
#include <X11/Xcursor/Xcursor.h>

namespace valdrix::desktop {

namespace {

struct EndXcursor {
  void operator()(XcursorImage* image) const { XcursorImageDestroy(image); }
};
using Picture = std::unique_ptr<XcursorImage, EndXcursor>;

/// The size that the user has chosen, in logical pixels.
int chosenSize() {
  constexpr int usualSize = 24;
  bool isNumber = false;
  const int chosen = qgetenv("XCURSOR_SIZE").toInt(&isNumber);
  return isNumber && chosen > 0 ? chosen : usualSize;
}

// The client library for Wayland's cursors reads every picture of the theme before it gives one,
// which takes the time of several frames. This one opens only the file that is wanted.
Picture read(bool isHand, int size) {
  const QByteArray theme = qgetenv("XCURSOR_THEME");
  // The names that style sheets use, and those of the X cursor font for themes that know only
  // those.
  using Names = std::array<const char*, 2>;
  for (const char* name : isHand ? Names{"pointer", "hand2"} : Names{"default", "left_ptr"})
    if (Picture picture{
            XcursorLibraryLoadImage(name, theme.isEmpty() ? nullptr : theme.constData(), size)})
      return picture;
  return nullptr;
}

/// Puts `source` in the top left corner of `target`.
void copy(const XcursorImage& source, QImage& target) {
  for (std::uint32_t row = 0; row < source.height; ++row)
    std::memcpy(target.scanLine(static_cast<int>(row)), source.pixels + row * source.width,
                source.width * sizeof(XcursorPixel));
}

}  // namespace

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

WaylandCursor::Shape WaylandCursor::load(bool isHand) const {
  const int size = chosenSize();
  const Picture picture = read(isHand, size * scale_);
  if (!picture) return {};
  // Themes have few sizes: what comes may be for another scale, and need not divide by it.
  Shape shape;
  shape.scale = std::max(1, qRound(static_cast<double>(picture->size) / size));
  const auto whole = [&](std::uint32_t pixels) {
    return (static_cast<int>(pixels) + shape.scale - 1) / shape.scale * shape.scale;
  };
  shape.hotspot =
      QPoint(static_cast<int>(picture->xhot), static_cast<int>(picture->yhot)) / shape.scale;
  auto buffer = std::make_unique<WaylandBuffers::Buffer>(
      *connection_.shm(), QSize(whole(picture->width), whole(picture->height)), [] {});
  if (buffer->image().isNull()) return {};
  copy(*picture, buffer->image());
  shape.buffer = std::move(buffer);
  return shape;
}

void WaylandCursor::show() {
  if (!pointer_ || !connection_.isUsable()) return;
  const std::pair key{pushes_ > 0, scale_};
  auto known = shapes_.find(key);
  if (known == shapes_.end()) known = shapes_.emplace(key, load(key.first)).first;
  const Shape& shape = known->second;
  if (!shape.buffer) return;
  if (!surface_) surface_.reset(wl_compositor_create_surface(connection_.compositor()));
  wl_surface_set_buffer_scale(surface_.get(), shape.scale);
  wl_surface_attach(surface_.get(), shape.buffer->get(), 0, 0);
  wl_surface_damage(surface_.get(), 0, 0, INT32_MAX, INT32_MAX);
  wl_surface_commit(surface_.get());
  wl_pointer_set_cursor(pointer_, serial_, surface_.get(), shape.hotspot.x(), shape.hotspot.y());
}

}  // namespace valdrix::desktop
