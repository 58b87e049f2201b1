#include "desktop/wayland/WaylandPointer.h"

#include <utility>

namespace valdrix::desktop {

namespace {

std::function<void(std::uint32_t)> filtered(std::uint32_t mask, std::function<void()> handler) {
  return [mask, handler = std::move(handler)](std::uint32_t kind) {
    if (mask & kind) handler();
  };
}

}  // namespace

Token WaylandPointer::addGlobalMonitorForEventsMatchingMask(std::uint32_t mask,
                                                            std::function<void()> handler) {
  return globalMonitors_.add(filtered(mask, std::move(handler)));
}

Token WaylandPointer::addLocalMonitorForEventsMatchingMask(std::uint32_t mask,
                                                           std::function<void()> handler) {
  return localMonitors_.add(filtered(mask, std::move(handler)));
}

void WaylandPointer::report(Destination destination, std::uint32_t kind) {
  const auto& monitors = destination == Destination::ourWindow ? localMonitors_ : globalMonitors_;
  monitors.notify(kind);
}

}  // namespace valdrix::desktop
