#include "notch/NotchScreen.h"

#include <algorithm>
#include <cmath>

namespace valdrix {

namespace {

constexpr view::Size sizeWithoutHousing{200, 32};

}  // namespace

std::optional<platform::Screen> notchScreen(const platform::Screens& screens) {
  auto all = screens.screens();
  const auto found = std::find_if(all.begin(), all.end(), [](const platform::Screen& screen) {
    return screen.safeAreaInsetTop > 0;
  });
  if (found == all.end()) return std::nullopt;
  return std::move(*found);
}

std::optional<platform::Screen> panelScreen(const platform::Screens& screens) {
  if (auto screen = notchScreen(screens)) return screen;
  return screens.mainScreen();
}

view::Size notchSize(const platform::Screen& screen) {
  const double top = screen.safeAreaInsetTop;
  if (!(top > 0)) return sizeWithoutHousing;
  const double left =
      screen.auxiliaryTopLeftArea ? screen.auxiliaryTopLeftArea->maxX() : screen.frame.minX();
  const double right =
      screen.auxiliaryTopRightArea ? screen.auxiliaryTopRightArea->minX() : screen.frame.maxX();
  return {std::floor(std::max(0.0, right - left)), std::floor(top)};
}

}  // namespace valdrix
