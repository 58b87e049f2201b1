#pragma once

#include <map>
#include <memory>

#include "desktop/wayland/WaylandConnection.h"
#include "desktop/wayland/WaylandCursor.h"
#include "desktop/wayland/WaylandInputRegion.h"

namespace valdrix::desktop {

/// The compositor's seats: brings what their pointers do to the panel whose surface they are on.
class WaylandSeats {
 public:
  /// Both must outlive it.
  WaylandSeats(WaylandConnection& connection, WaylandCursor& cursor);
  ~WaylandSeats();
  WaylandSeats(const WaylandSeats&) = delete;
  WaylandSeats& operator=(const WaylandSeats&) = delete;

  /// `region` hears what happens on `surface` until the token ends, which must be before the
  /// surface does. `scale` is that of the surface's pictures, in whole numbers.
  [[nodiscard]] Token attach(wl_surface* surface, WaylandInputRegion& region, int scale);

 private:
  class Seat;
  struct Target {
    WaylandInputRegion* region;
    int scale;
  };

  WaylandConnection& connection_;
  WaylandCursor& cursor_;
  std::map<wl_surface*, Target> targets_;
  std::map<std::uint32_t, std::unique_ptr<Seat>> seats_;
  Token globals_;
};

}  // namespace valdrix::desktop
