#include "desktop/wayland/WaylandSeats.h"

namespace valdrix::desktop {

namespace {

constexpr std::uint32_t seatVersion = 3;

}  // namespace

class WaylandSeats::Seat {
 public:
  Seat(WaylandSeats& owner, const WaylandGlobal& global)
      : owner_(owner),
        seat_(owner.connection_.bind<wl_seat>(global, wl_seat_interface, seatVersion)) {
    static constexpr wl_seat_listener listener{
        .capabilities =
            [](void* data, wl_seat*, std::uint32_t capabilities) {
              self(data).setHasPointer((capabilities & WL_SEAT_CAPABILITY_POINTER) != 0);
            },
        .name = [](void*, wl_seat*, const char*) {},
    };
    wl_seat_add_listener(seat_.get(), &listener, this);
  }
  ~Seat() { setHasPointer(false); }
  Seat(const Seat&) = delete;
  Seat& operator=(const Seat&) = delete;

  void forget(wl_surface* surface) {
    if (surface_ == surface) leave(surface);
  }

 private:
  static Seat& self(void* data) { return *static_cast<Seat*>(data); }
  static const wl_pointer_listener pointerListener;

  void setHasPointer(bool hasPointer) {
    if (hasPointer == static_cast<bool>(pointer_)) return;
    if (hasPointer) {
      pointer_.reset(wl_seat_get_pointer(seat_.get()));
      wl_pointer_add_listener(pointer_.get(), &pointerListener, this);
    } else {
      if (auto* const region = target()) region->left();
      leave(surface_);
      pointer_.reset();
    }
  }
  [[nodiscard]] WaylandInputRegion* target() const {
    const auto found = owner_.targets_.find(surface_);
    return found == owner_.targets_.end() ? nullptr : found->second.region;
  }
  void enter(std::uint32_t serial, wl_surface* surface, QPointF position) {
    surface_ = surface;
    const auto found = owner_.targets_.find(surface);
    if (found == owner_.targets_.end()) return;
    owner_.cursor_.entered(pointer_.get(), serial, found->second.scale);
    found->second.region->entered(position);
  }
  void leave(wl_surface* surface) {
    if (surface != surface_) return;
    surface_ = nullptr;
    owner_.cursor_.left();
  }

  WaylandSeats& owner_;
  WaylandOwned<wl_seat> seat_;
  WaylandOwned<wl_pointer> pointer_;
  wl_surface* surface_ = nullptr;  ///< the one that its pointer is on
};

// Later versions have more events, which are not asked for.
const wl_pointer_listener WaylandSeats::Seat::pointerListener = [] {
  wl_pointer_listener listener{};
  listener.enter = [](void* data, wl_pointer*, std::uint32_t serial, wl_surface* surface,
                      wl_fixed_t x, wl_fixed_t y) {
    self(data).enter(serial, surface, {wl_fixed_to_double(x), wl_fixed_to_double(y)});
  };
  listener.leave = [](void* data, wl_pointer*, std::uint32_t, wl_surface* surface) {
    auto& seat = self(data);
    auto* const region = seat.target();
    seat.leave(surface);
    if (region) region->left();
  };
  listener.motion = [](void* data, wl_pointer*, std::uint32_t, wl_fixed_t x, wl_fixed_t y) {
    if (auto* const region = self(data).target())
      region->moved({wl_fixed_to_double(x), wl_fixed_to_double(y)});
  };
  listener.button = [](void* data, wl_pointer*, std::uint32_t, std::uint32_t, std::uint32_t button,
                       std::uint32_t state) {
    if (auto* const region = self(data).target())
      region->button(button, state == WL_POINTER_BUTTON_STATE_PRESSED);
  };
  listener.axis = [](void*, wl_pointer*, std::uint32_t, std::uint32_t, wl_fixed_t) {};
  return listener;
}();

WaylandSeats::WaylandSeats(WaylandConnection& connection, WaylandCursor& cursor)
    : connection_(connection), cursor_(cursor) {
  if (!connection_.isUsable()) return;
  globals_ = connection_.observeGlobals(
      [this](const WaylandGlobal& global) {
        if (global.interface == wl_seat_interface.name)
          seats_[global.name] = std::make_unique<Seat>(*this, global);
      },
      [this](std::uint32_t name) { seats_.erase(name); });
}

WaylandSeats::~WaylandSeats() = default;

Token WaylandSeats::attach(wl_surface* surface, WaylandInputRegion& region, int scale) {
  targets_[surface] = {&region, scale};
  return Token([this, surface] {
    for (const auto& [name, seat] : seats_) seat->forget(surface);
    targets_.erase(surface);
  });
}

}  // namespace valdrix::desktop
