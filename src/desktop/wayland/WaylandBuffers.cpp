#include "desktop/wayland/WaylandBuffers.h"

#include <algorithm>
#include <fcntl.h>
#include <memory>
#include <unistd.h>
#include <utility>

#include <sys/mman.h>

namespace valdrix::desktop {

namespace {

constexpr int bytesPerPixel = 4;
/// Two are drawn on by turns; a compositor that keeps one for longer makes a third necessary.
constexpr std::size_t mostBuffers = 3;

/// Memory that is shared with the compositor. Comes from the system only as far as it is painted.
struct Mapping {
  void* start;
  std::size_t length;
};

void unmap(void* info) {
  const std::unique_ptr<Mapping> mapping(static_cast<Mapping*>(info));
  munmap(mapping->start, mapping->length);
}

}  // namespace

WaylandBuffers::Buffer::Buffer(wl_shm& memory, QSize size, std::function<void()> onReleased)
    : onReleased_(std::move(onReleased)) {
  const int bytesPerLine = size.width() * bytesPerPixel;
  const int length = bytesPerLine * size.height();
  const int file = memfd_create("valdrix-panel", MFD_CLOEXEC | MFD_ALLOW_SEALING);
  if (file < 0) return;
  // A compositor need not fear for memory that cannot shrink.
  const bool isSized = ftruncate(file, length) == 0 && fcntl(file, F_ADD_SEALS, F_SEAL_SHRINK) == 0;
  void* const pixels = isSized ? mmap(nullptr, static_cast<std::size_t>(length),
                                      PROT_READ | PROT_WRITE, MAP_SHARED, file, 0)
                               : MAP_FAILED;
  if (pixels != MAP_FAILED) {
    image_ = QImage(static_cast<uchar*>(pixels), size.width(), size.height(), bytesPerLine,
                    QImage::Format_ARGB32_Premultiplied, &unmap,
                    new Mapping{pixels, static_cast<std::size_t>(length)});
    const WaylandOwned<wl_shm_pool> pool(wl_shm_create_pool(&memory, file, length));
    buffer_.reset(wl_shm_pool_create_buffer(pool.get(), 0, size.width(), size.height(),
                                            bytesPerLine, WL_SHM_FORMAT_ARGB8888));
    static constexpr wl_buffer_listener listener{.release = [](void* data, wl_buffer*) {
      auto& self = *static_cast<Buffer*>(data);
      self.isBusy_ = false;
      self.onReleased_();
    }};
    wl_buffer_add_listener(buffer_.get(), &listener, this);
  }
  close(file);
}

WaylandBuffers::WaylandBuffers(wl_shm* memory, std::function<void()> onReleased)
    : memory_(memory), onReleased_(std::move(onReleased)) {}

void WaylandBuffers::setSize(QSize size) {
  if (std::exchange(size_, size) != size) clear();
}

WaylandBuffers::Buffer* WaylandBuffers::take(const QRect& painted) {
  const auto free =
      std::ranges::find_if(buffers_, [](const auto& buffer) { return !buffer->isBusy(); });
  if (free != buffers_.end()) return free->get();
  if (buffers_.size() >= mostBuffers || size_.isEmpty()) return nullptr;
  auto buffer = std::make_unique<Buffer>(*memory_, size_, onReleased_);
  if (buffer->image().isNull()) return nullptr;
  buffer->stale = painted;
  buffers_.push_back(std::move(buffer));
  return buffers_.back().get();
}

void WaylandBuffers::damage(const QRegion& area) {
  for (const auto& buffer : buffers_) buffer->stale |= area;
}

}  // namespace valdrix::desktop
