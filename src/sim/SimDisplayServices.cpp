#include "sim/SimDisplayServices.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace valdrix::sim {

using platform::DisplayID;

namespace {

constexpr std::int32_t noSuchDisplay = -1;
constexpr std::int32_t noNumber = -2;

}  // namespace

class SimDisplayServices::Library : public platform::DisplayServicesLibrary {
 public:
  explicit Library(SimDisplayServices& services) : services_(services) {
    services_.trace_.add("display services opened");
  }
  ~Library() override { services_.trace_.add("display services closed"); }
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;

  CanChangeBrightness canChangeBrightness() override {
    if (!services_.installation_.hasCanChangeBrightness) return {};
    return [this](DisplayID display) { return services_.canChange(display); };
  }
  GetBrightness getBrightness() override {
    if (!services_.installation_.hasGetBrightness) return {};
    return [this](DisplayID display, float& level) { return services_.get(display, level); };
  }
  SetBrightness setBrightness() override {
    if (!services_.installation_.hasSetBrightness) return {};
    return [this](DisplayID display, float level) { return services_.set(display, level); };
  }

 private:
  SimDisplayServices& services_;
};

std::unique_ptr<platform::DisplayServicesLibrary> SimDisplayServices::open() {
  if (!installation_.hasLibrary) return nullptr;
  return std::make_unique<Library>(*this);
}

bool SimDisplayServices::canChange(DisplayID display) {
  return displays_.isActive(display) && backlight(display).canChange;
}

std::int32_t SimDisplayServices::get(DisplayID display, float& brightness) {
  if (!displays_.isActive(display)) return noSuchDisplay;
  const Backlight& backlight = backlights_[display];
  if (backlight.getStatus == 0) brightness = backlight.level;
  return backlight.getStatus;
}

std::int32_t SimDisplayServices::set(DisplayID display, float brightness) {
  auto status = displays_.isActive(display) ? backlights_[display].setStatus : noSuchDisplay;
  if (std::isnan(brightness)) status = noNumber;
  trace_.add("brightness " + std::to_string(display) + " set " + formatNumber(brightness) +
             (status == 0 ? "" : " failed " + std::to_string(status)));
  if (status != 0) return status;
  Backlight& backlight = backlights_[display];
  backlight.level = std::clamp(brightness, 0.0F, 1.0F);
  if (backlight.steps > 0) {
    const auto steps = static_cast<float>(backlight.steps);
    backlight.level = std::round(backlight.level * steps) / steps;
  }
  return 0;
}

}  // namespace valdrix::sim
