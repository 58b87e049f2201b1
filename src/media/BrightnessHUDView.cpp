#include "media/BrightnessHUDView.h"

#include "media/Level.h"
#include "media/LevelHUD.h"

namespace valdrix {

std::string BrightnessHUDView::symbolName() const {
  return level < 0.33F ? "sun.min.fill" : "sun.max.fill";
}

view::View BrightnessHUDView::body() const {
  return LevelHUD{.symbolName = symbolName(),
                  .fraction = clampedLevel(level),
                  .percentText = percentText(level)};
}

}  // namespace valdrix
