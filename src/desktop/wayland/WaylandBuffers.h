#pragma once

#include <functional>
#include <memory>
#include <vector>

#include <QImage>
#include <QRegion>

#include "desktop/wayland/WaylandHandles.h"

namespace valdrix::desktop {

/// The pictures of one surface, in memory that the compositor reads. While it reads one, the next
/// is drawn on another; they are made when needed and used again.
class WaylandBuffers {
 public:
  class Buffer {
   public:
    Buffer(wl_shm& memory, QSize size, std::function<void()> onReleased);
    Buffer(const Buffer&) = delete;
    Buffer& operator=(const Buffer&) = delete;

    /// Premultiplied; null when there is no memory for it.
    [[nodiscard]] QImage& image() { return image_; }
    [[nodiscard]] wl_buffer* get() const { return buffer_.get(); }
    [[nodiscard]] bool isBusy() const { return isBusy_; }
    /// It is the compositor's until that gives it back.
    void setBusy() { isBusy_ = true; }

    /// What it does not show as it should, in its pixels.
    QRegion stale;

   private:
    bool isBusy_ = false;
    std::function<void()> onReleased_;
    QImage image_;
    WaylandOwned<wl_buffer> buffer_;
  };

  /// `memory` must outlive it. `onReleased` is called when there may be a free one again.
  WaylandBuffers(wl_shm* memory, std::function<void()> onReleased);

  /// The size of the pictures from now on; those of another size are given up.
  void setSize(QSize size);
  [[nodiscard]] QSize size() const { return size_; }
  /// One that can be drawn on; null while the compositor has them all. A new one is transparent
  /// and stale in `painted`, which is all that has been painted on the others.
  [[nodiscard]] Buffer* take(const QRect& painted);
  /// An area looks different now.
  void damage(const QRegion& area);
  void clear() { buffers_.clear(); }

 private:
  wl_shm* memory_;
  std::function<void()> onReleased_;
  QSize size_;
  std::vector<std::unique_ptr<Buffer>> buffers_;
};

}  // namespace valdrix::desktop
