#pragma once

#include <cstdint>

#include "observation/Listeners.h"
#include "platform/Pointer.h"

namespace valdrix::desktop {

/// The pointer as far as a client of a compositor hears of it: panels report what their input
/// regions are told. Elsewhere, and while another program drags, nobody tells us where it is; it
/// then counts as being below the panel and the place where it left.
class WaylandPointer final : public platform::Pointer {
 public:
  [[nodiscard]] Token addGlobalMonitorForEventsMatchingMask(std::uint32_t mask,
                                                            std::function<void()> handler) override;
  [[nodiscard]] Token addLocalMonitorForEventsMatchingMask(std::uint32_t mask,
                                                           std::function<void()> handler) override;
  [[nodiscard]] view::Point mouseLocation() const override { return location_; }

  /// The pointer has been seen there; that alone is no motion.
  void setLocation(view::Point location) {
    location_ = location;
    isOutOfSight_ = false;
  }
  /// The surface that it was on is gone: it may be anywhere by now, until it is seen again.
  void setOutOfSight() { isOutOfSight_ = true; }
  [[nodiscard]] bool isOutOfSight() const { return isOutOfSight_; }

  enum class Destination { ourWindow, elsewhere };
  /// Motion of a `kind` (see `platform::eventMask`) has been delivered to `destination`.
  void report(Destination destination, std::uint32_t kind);

 private:
  view::Point location_;
  bool isOutOfSight_ = false;
  Listeners<std::uint32_t> globalMonitors_;
  Listeners<std::uint32_t> localMonitors_;
};

}  // namespace valdrix::desktop
