#include "bench/wayland/ScreenProbe.h"

#include <algorithm>
#include <cstring>
#include <poll.h>
#include <unistd.h>

#include <sys/mman.h>
#include <wayland-protocols/wlr-screencopy-unstable-v1.h>

#include "bench/desktop/Clock.h"
#include "desktop/wayland/WaylandHandles.h"

namespace valdrix::bench {

namespace {

using desktop::WaylandOwned;

/// The first version that can wait for a change.
constexpr std::uint32_t screencopyVersion = 2;

}  // namespace

class ScreenProbe::Recording {
 public:
  explicit Recording(const QRect& area) : area_(area), display_(wl_display_connect(nullptr)) {
    static constexpr wl_registry_listener listener{
        .global =
            [](void* data, wl_registry* registry, std::uint32_t name, const char* interface,
               std::uint32_t version) {
              auto& me = self(data);
              const auto take = [&]<class P>(P& place, const wl_interface& wanted,
                                             std::uint32_t wantedVersion) {
                if (!place && std::strcmp(interface, wanted.name) == 0 && version >= wantedVersion)
                  place.reset(static_cast<typename P::pointer>(
                      wl_registry_bind(registry, name, &wanted, wantedVersion)));
              };
              take(me.memory_, wl_shm_interface, 1);
              take(me.output_, wl_output_interface, 1);
              take(me.manager_, zwlr_screencopy_manager_v1_interface, screencopyVersion);
            },
        .global_remove = [](void*, wl_registry*, std::uint32_t) {},
    };
    if (!display_) return;
    registry_.reset(wl_display_get_registry(display_.get()));
    wl_registry_add_listener(registry_.get(), &listener, this);
    wl_display_roundtrip(display_.get());
  }
  ~Recording() {
    if (pixels_) munmap(pixels_, length_);
  }
  Recording(const Recording&) = delete;
  Recording& operator=(const Recording&) = delete;

  enum class Until { now, changed };
  /// The next picture, or nothing when it has not come at `deadline`.
  std::optional<Picture> next(Until until, Clock::time_point deadline) {
    ask(until);
    while (frame_ && !isReady_)
      if (!dispatch(deadline)) return std::nullopt;
    return frame_ ? std::optional(current()) : std::nullopt;
  }

 private:
  static Recording& self(void* data) { return *static_cast<Recording*>(data); }

  void ask(Until until) {
    isReady_ = false;
    until_ = until;
    if (!manager_ || !output_ || !memory_) return;
    static constexpr zwlr_screencopy_frame_v1_listener listener{
        .buffer = [](void* data, zwlr_screencopy_frame_v1*, std::uint32_t format,
                     std::uint32_t width, std::uint32_t height,
                     std::uint32_t stride) { self(data).copy(format, width, height, stride); },
        .flags = [](void*, zwlr_screencopy_frame_v1*, std::uint32_t) {},
        .ready = [](void* data, zwlr_screencopy_frame_v1*, std::uint32_t, std::uint32_t,
                    std::uint32_t) { self(data).isReady_ = true; },
        .failed = [](void* data, zwlr_screencopy_frame_v1*) { self(data).frame_.reset(); },
        .damage = [](void*, zwlr_screencopy_frame_v1*, std::uint32_t, std::uint32_t, std::uint32_t,
                     std::uint32_t) {},
        .linux_dmabuf = nullptr,
        .buffer_done = nullptr,
    };
    frame_.reset(zwlr_screencopy_manager_v1_capture_output_region(
        manager_.get(), 0, output_.get(), area_.x(), area_.y(), area_.width(), area_.height()));
    zwlr_screencopy_frame_v1_add_listener(frame_.get(), &listener, this);
  }

  void copy(std::uint32_t format, std::uint32_t width, std::uint32_t height, std::uint32_t stride) {
    if (!buffer_) makeBuffer(format, width, height, stride);
    if (!buffer_)
      frame_.reset();
    else if (until_ == Until::changed)
      zwlr_screencopy_frame_v1_copy_with_damage(frame_.get(), buffer_.get());
    else
      zwlr_screencopy_frame_v1_copy(frame_.get(), buffer_.get());
  }

  void makeBuffer(std::uint32_t format, std::uint32_t width, std::uint32_t height,
                  std::uint32_t stride) {
    length_ = std::size_t{stride} * height;
    const int file = memfd_create("screen", MFD_CLOEXEC);
    void* const mapped = ftruncate(file, static_cast<off_t>(length_)) == 0
                             ? mmap(nullptr, length_, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0)
                             : MAP_FAILED;
    if (mapped != MAP_FAILED) {
      pixels_ = mapped;
      const WaylandOwned<wl_shm_pool> pool(
          wl_shm_create_pool(memory_.get(), file, static_cast<int>(length_)));
      buffer_.reset(wl_shm_pool_create_buffer(pool.get(), 0, static_cast<int>(width),
                                              static_cast<int>(height), static_cast<int>(stride),
                                              format));
    }
    close(file);
  }

  [[nodiscard]] Picture current() const {
    Picture picture(length_ / sizeof(Picture::value_type));
    std::memcpy(picture.data(), pixels_, length_);
    return picture;
  }

  /// Deals with what the compositor says next; false when it says nothing until `deadline`.
  bool dispatch(Clock::time_point deadline) {
    auto* const display = display_.get();
    while (wl_display_prepare_read(display) != 0) wl_display_dispatch_pending(display);
    wl_display_flush(display);
    const auto rest = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
    pollfd readable{wl_display_get_fd(display), POLLIN, 0};
    if (poll(&readable, 1, static_cast<int>(std::max<long>(rest, 0))) <= 0) {
      wl_display_cancel_read(display);
      return false;
    }
    return wl_display_read_events(display) >= 0 && wl_display_dispatch_pending(display) >= 0;
  }

  struct EndScreencopy {
    void operator()(zwlr_screencopy_manager_v1* o) const { zwlr_screencopy_manager_v1_destroy(o); }
    void operator()(zwlr_screencopy_frame_v1* o) const { zwlr_screencopy_frame_v1_destroy(o); }
  };

  QRect area_;
  WaylandOwned<wl_display> display_;
  WaylandOwned<wl_registry> registry_;
  WaylandOwned<wl_shm> memory_;
  WaylandOwned<wl_output> output_;
  std::unique_ptr<zwlr_screencopy_manager_v1, EndScreencopy> manager_;
  WaylandOwned<wl_buffer> buffer_;
  void* pixels_ = nullptr;
  std::size_t length_ = 0;
  std::unique_ptr<zwlr_screencopy_frame_v1, EndScreencopy> frame_;
  Until until_ = Until::now;
  bool isReady_ = false;
};

ScreenProbe::ScreenProbe(const QRect& area) : recording_(std::make_unique<Recording>(area)) {}
ScreenProbe::~ScreenProbe() = default;

namespace {

Clock::time_point after(Clock::time_point start, double seconds) {
  return start +
         std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
}

}  // namespace

ScreenProbe::Picture ScreenProbe::picture() {
  return recording_->next(Recording::Until::now, after(Clock::now(), 1)).value_or(Picture());
}

std::optional<double> ScreenProbe::secondsToChange(const std::function<void()>& act, double limit) {
  const Picture before = picture();
  const auto start = Clock::now();
  act();
  for (auto current = std::optional(before); current;) {
    if (*current != before) return secondsSince(start);
    current = recording_->next(Recording::Until::changed, after(start, limit));
  }
  return std::nullopt;
}

bool ScreenProbe::awaitPicture(const Picture& wanted, double limit) {
  const auto deadline = after(Clock::now(), limit);
  auto current = std::optional(picture());
  while (current && *current != wanted)
    current = recording_->next(Recording::Until::changed, deadline);
  return current.has_value();
}

}  // namespace valdrix::bench
