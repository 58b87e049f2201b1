#include "media/BrightnessService.h"

#include <algorithm>
#include <utility>

#include "media/Level.h"

namespace valdrix {

BrightnessService::BrightnessService(platform::DisplayServices& displayServices,
                                     const platform::Displays& displays)
    : displays_(displays) {
  loadDisplayServices(displayServices);
  refresh();
}

void BrightnessService::setOnBrightnessChanged(std::function<void(float)> onBrightnessChanged) {
  onBrightnessChanged_ = std::move(onBrightnessChanged);
}

void BrightnessService::loadDisplayServices(platform::DisplayServices& displayServices) {
  library_ = displayServices.open();
  if (!library_) return;
  auto canChange = library_->canChangeBrightness();
  auto getBrightness = library_->getBrightness();
  auto setBrightness = library_->setBrightness();
  if (!canChange || !getBrightness || !setBrightness) return;
  canChange_ = std::move(canChange);
  getBrightness_ = std::move(getBrightness);
  setBrightness_ = std::move(setBrightness);
  if (const auto display = builtInDisplayID()) isAvailable_ = canChange_(*display);
}

std::optional<platform::DisplayID> BrightnessService::builtInDisplayID() const {
  const auto active = displays_.getActiveDisplayList();
  if (!active) return std::nullopt;
  const auto builtIn = std::find_if(active->begin(), active->end(),
                                    [this](auto display) { return displays_.isBuiltin(display); });
  return builtIn == active->end() ? std::nullopt : std::optional(*builtIn);
}

void BrightnessService::refresh() {
  const auto display = builtInDisplayID();
  if (!display || !getBrightness_) return;
  float brightness = 0;
  if (getBrightness_(*display, brightness) == 0) level_ = brightness;
}

void BrightnessService::adjust(float delta) {
  if (!isAvailable_) return;
  const auto display = builtInDisplayID();
  if (!display) return;
  float current = 0;
  if (getBrightness_(*display, current) != 0) return;
  const float target = clampedLevel(current + delta);
  if (setBrightness_(*display, target) != 0) return;
  float after = 0;
  level_ = getBrightness_(*display, after) == 0 ? after : target;
  if (onBrightnessChanged_) onBrightnessChanged_(level_);
}

}  // namespace valdrix
