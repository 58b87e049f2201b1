#include "desktop/wayland/WaylandScreens.h"

#include <algorithm>

namespace valdrix::desktop {

WaylandScreens::WaylandScreens(WaylandConnection& connection, CameraHousings& housings)
    : NotifyingScreens(housings), connection_(connection) {
  if (!connection_.isUsable()) return;
  globals_ = connection_.observeGlobals([this](const WaylandGlobal& global) { add(global); },
                                        [this](std::uint32_t name) { remove(name); });
  connection_.roundTrip();
  begin();
}

void WaylandScreens::add(const WaylandGlobal& global) {
  if (global.interface != wl_output_interface.name) return;
  outputs_.push_back(
      std::make_unique<WaylandOutput>(connection_, global, [this] { scheduleUpdate(); }));
}

void WaylandScreens::remove(std::uint32_t name) {
  const auto removed =
      std::erase_if(outputs_, [&](const auto& output) { return output->globalName() == name; });
  // One that comes in its stead may look the same, and yet what stood on this one is gone.
  if (removed > 0) scheduleReplacement();
}

std::vector<WaylandScreens::Place> WaylandScreens::places() const {
  std::vector<Place> places;
  for (const auto& output : outputs_) {
    if (!output->isComplete()) continue;
    const auto& description = output->description();
    const QRect& area = description.logical;
    const QRect main = places.empty() ? area : places.front().description.logical;
    places.push_back({output->get(),
                      output->globalName(),
                      description,
                      {static_cast<double>(area.x() - main.x()),
                       static_cast<double>(main.y() + main.height() - area.y() - area.height()),
                       static_cast<double>(area.width()), static_cast<double>(area.height())}});
  }
  return places;
}

std::vector<platform::Screen> WaylandScreens::screens() const {
  std::vector<platform::Screen> screens;
  for (const auto& place : places())
    screens.push_back(
        {.name = place.description.name, .frame = place.frame, .scale = place.description.scale()});
  housings().applyTo(screens);
  return screens;
}

std::optional<WaylandScreens::Place> WaylandScreens::placeFor(const view::Rect& rectangle) const {
  const auto all = places();
  if (all.empty()) return std::nullopt;
  const view::Point anchor{rectangle.midX(), rectangle.maxY()};
  // A top edge is also the bottom edge of the output above: the one that it hangs from wins.
  const auto found = std::ranges::find_if(all, [&](const Place& place) {
    return place.frame.contains(anchor) && anchor.y > place.frame.minY();
  });
  return found == all.end() ? all.front() : *found;
}

}  // namespace valdrix::desktop
