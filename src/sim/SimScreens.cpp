#include "sim/SimScreens.h"

#include <algorithm>
#include <utility>

namespace valdrix::sim {

std::optional<platform::Screen> SimScreens::mainScreen() const {
  if (screens_.empty()) return std::nullopt;
  return screens_.front();
}

Token SimScreens::observeChanges(std::function<void()> block) {
  return observers_.add(std::move(block));
}

void SimScreens::setScreens(std::vector<platform::Screen> screens) {
  if (screens == screens_) return;
  screens_ = std::move(screens);
  std::string line = "screens";
  for (const auto& screen : screens_)
    line +=
        " " + screen.name + " " + formatRect(screen.frame) + " scale " + formatNumber(screen.scale);
  trace_.add(screens_.empty() ? "screens none" : line);
  observers_.notify();
}

void SimScreens::plugIn(const platform::Screen& screen) {
  auto screens = screens_;
  const auto known = std::ranges::find(screens, screen.name, &platform::Screen::name);
  if (known == screens.end())
    screens.push_back(screen);
  else
    *known = screen;
  setScreens(std::move(screens));
}

void SimScreens::unplug(std::string_view name) {
  auto screens = screens_;
  std::erase_if(screens, [&](const platform::Screen& screen) { return screen.name == name; });
  setScreens(std::move(screens));
}

platform::Screen SimScreens::withHousing(platform::Screen screen, double width, double inset) {
  const auto& frame = screen.frame;
  const double side = (frame.width - width) / 2;
  screen.safeAreaInsetTop = inset;
  screen.auxiliaryTopLeftArea = {frame.minX(), frame.maxY() - inset, side, inset};
  screen.auxiliaryTopRightArea = {frame.maxX() - side, frame.maxY() - inset, side, inset};
  return screen;
}

}  // namespace valdrix::sim
