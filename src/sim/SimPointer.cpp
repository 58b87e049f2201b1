#include "sim/SimPointer.h"

#include <algorithm>
#include <utility>

#include "sim/SimPanelWindow.h"

namespace valdrix::sim {

Token SimPointer::add(Monitors& monitors, std::uint32_t mask, std::function<void()> handler) {
  if (!allowsMonitors_) return {};
  return monitors.add([mask, handler = std::move(handler)](std::uint32_t kind) {
    if (mask & kind) handler();
  });
}

Token SimPointer::addGlobalMonitorForEventsMatchingMask(std::uint32_t mask,
                                                        std::function<void()> handler) {
  return add(globalMonitors_, mask, std::move(handler));
}

Token SimPointer::addLocalMonitorForEventsMatchingMask(std::uint32_t mask,
                                                       std::function<void()> handler) {
  return add(localMonitors_, mask, std::move(handler));
}

void SimPointer::drag(view::Point to, bool withRightButton) {
  moveTo(to,
         withRightButton ? platform::eventMask::rightMouseDragged
                         : platform::eventMask::leftMouseDragged,
         true);
}

SimPanelWindow* SimPointer::windowUnderPointer() const {
  const auto found = std::find_if(windows_.rbegin(), windows_.rend(),
                                  [this](const auto* window) { return window->takes(location_); });
  return found == windows_.rend() ? nullptr : *found;
}

void SimPointer::moveTo(view::Point to, std::uint32_t kind, bool isForeignDrag) {
  if (to == location_) return;
  const auto watched = [this] {
    return std::ranges::any_of(windows_,
                               [&](const auto* window) { return window->watches(location_); });
  };
  const bool wasWatched = watched();
  location_ = to;
  for (auto* window : windows_) window->forgetRestingPointer();
  if (!wasWatched && !watched()) return;
  const bool isLocal = windowUnderPointer() && !isForeignDrag;
  (isLocal ? localMonitors_ : globalMonitors_).notify(kind);
  for (auto* window : std::vector(windows_))
    if (std::ranges::find(windows_, window) != windows_.end()) window->pointerMoved(location_);
}

bool SimPointer::press() {
  auto* window = windowUnderPointer();
  if (window) window->pointerPressed(location_);
  return window != nullptr;
}

bool SimPointer::release() {
  auto* window = windowUnderPointer();
  if (window) window->pointerReleased(location_);
  return window != nullptr;
}

bool SimPointer::click() {
  const bool isOurs = press();
  release();
  return isOurs;
}

}  // namespace valdrix::sim
