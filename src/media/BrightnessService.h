#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "observation/Observed.h"
#include "platform/DisplayServices.h"
#include "platform/Displays.h"

namespace valdrix {

/// The brightness of the built-in display: whether it can be controlled is decided once, at
/// construction; every change reads the display, writes, reads back and reports. Changes made
/// elsewhere are not watched for. Failures change nothing and report nothing. Main thread only.
class BrightnessService {
 public:
  /// Loads the brightness functions and reads the level, without a report.
  BrightnessService(platform::DisplayServices& displayServices, const platform::Displays& displays);
  BrightnessService(const BrightnessService&) = delete;
  BrightnessService& operator=(const BrightnessService&) = delete;

  /// The brightness that was last read or set, nominally 0 to 1.
  [[nodiscard]] float level() const { return level_; }
  [[nodiscard]] bool isAvailable() const { return isAvailable_; }

  /// Called with the new level after every successful change, also one to the same value.
  void setOnBrightnessChanged(std::function<void(float level)> onBrightnessChanged);

  /// Reads the level of now, without a report.
  void refresh();

  /// Moves the brightness by `delta`, held to 0 to 1.
  void adjust(float delta);

 private:
  void loadDisplayServices(platform::DisplayServices& displayServices);
  /// The first active display that is part of the machine; looked up anew for every operation.
  [[nodiscard]] std::optional<platform::DisplayID> builtInDisplayID() const;

  const platform::Displays& displays_;

  Observed<float> level_{0.0F};
  Observed<bool> isAvailable_{false};
  std::function<void(float)> onBrightnessChanged_;
  std::unique_ptr<platform::DisplayServicesLibrary> library_;
  platform::DisplayServicesLibrary::CanChangeBrightness canChange_;
  platform::DisplayServicesLibrary::GetBrightness getBrightness_;
  platform::DisplayServicesLibrary::SetBrightness setBrightness_;
};

}  // namespace valdrix
