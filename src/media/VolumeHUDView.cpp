#include "media/VolumeHUDView.h"

#include "media/Level.h"
#include "media/LevelHUD.h"

namespace valdrix {

namespace {

constexpr double mutedFillOpacity = 0.35;

}  // namespace

std::string VolumeHUDView::symbolName() const {
  if (isMuted) return "speaker.slash.fill";
  if (level < 0.01F) return "speaker.fill";
  if (level < 0.34F) return "speaker.wave.1.fill";
  if (level < 0.67F) return "speaker.wave.2.fill";
  return "speaker.wave.3.fill";
}

view::View VolumeHUDView::body() const {
  return LevelHUD{.symbolName = symbolName(),
                  .fraction = isMuted ? 0 : clampedLevel(level),
                  .fillOpacity = isMuted ? mutedFillOpacity : 1,
                  .percentText = percentText(level)};
}

}  // namespace valdrix
