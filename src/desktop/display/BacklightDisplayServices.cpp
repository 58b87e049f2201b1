#include "desktop/display/BacklightDisplayServices.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "desktop/display/BacklightLevel.h"

namespace valdrix::desktop {

using platform::DisplayID;

namespace {

constexpr std::int32_t success = 0;
constexpr std::int32_t noBacklight = -1;
constexpr std::int32_t failed = -2;

// Only firmware changes a brightness behind the kernel's back, so there the hardware is asked.
// Other drivers' idea of the hardware's value lags in fades, is 0 while the screen is off, or is
// scaled differently from what was written.
std::optional<std::uint64_t> observedBrightness(const Backlight& backlight) {
  if (backlight.type == Backlight::Type::firmware)
    if (const auto actual = readSysfsNumber(backlight.folder / "actual_brightness")) return actual;
  return readSysfsNumber(backlight.folder / "brightness");
}

class Library final : public platform::DisplayServicesLibrary {
 public:
  Library(const BacklightDisplays& displays, BacklightWriter& writer, BacklightAccess& access)
      : displays_(displays), writer_(writer), access_(access) {}

  CanChangeBrightness canChangeBrightness() override {
    return [this](DisplayID display) { return canChange(display); };
  }
  GetBrightness getBrightness() override {
    return [this](DisplayID display, float& brightness) { return get(display, brightness); };
  }
  SetBrightness setBrightness() override {
    return [this](DisplayID display, float brightness) { return set(display, brightness); };
  }

 private:
  /// What was asked for last, and what was written for it.
  struct Request {
    std::string backlight;
    std::uint64_t brightness = 0;
    float level = 0;
  };

  bool canChange(DisplayID display) {
    const auto* const backlight = displays_.backlight(display);
    return backlight && backlight->maxBrightness > lowestBrightness(*backlight) &&
           writer_.canWrite(*backlight);
  }

  std::int32_t get(DisplayID display, float& brightness) const {
    const auto* const backlight = displays_.backlight(display);
    if (!backlight) return noBacklight;
    const auto observed = observedBrightness(*backlight);
    if (!observed) return failed;
    const bool isAsRequested =
        request_.backlight == backlight->name && request_.brightness == *observed;
    brightness = isAsRequested ? request_.level : levelFromBrightness(*backlight, *observed);
    return success;
  }

  std::int32_t set(DisplayID display, float brightness) {
    const auto* const backlight = displays_.backlight(display);
    if (!backlight) return noBacklight;
    if (std::isnan(brightness)) return failed;
    const auto value = brightnessFromLevel(*backlight, brightness);
    const bool isWritten = writer_.write(*backlight, value);
    access_.wrote(isWritten);
    if (!isWritten) return failed;
    request_ = {backlight->name, value, std::clamp(brightness, 0.0F, 1.0F)};
    return success;
  }

  const BacklightDisplays& displays_;
  BacklightWriter& writer_;
  BacklightAccess& access_;
  Request request_;
};

std::optional<Backlight> builtInBacklight(const BacklightDisplays& displays) {
  for (const auto display : displays.getActiveDisplayList().value_or(std::vector<DisplayID>()))
    if (displays.isBuiltin(display))
      if (const auto* const backlight = displays.backlight(display)) return *backlight;
  return std::nullopt;
}

}  // namespace

BacklightDisplayServices::BacklightDisplayServices(const BacklightDisplays& displays,
                                                   const std::filesystem::path& root)
    : displays_(displays),
      writer_(root),
      access_(writer_, [&displays] { return builtInBacklight(displays); }) {}

std::unique_ptr<platform::DisplayServicesLibrary> BacklightDisplayServices::open() {
  if (!displays_.hasBacklightClass()) return nullptr;
  return std::make_unique<Library>(displays_, writer_, access_);
}

}  // namespace valdrix::desktop
