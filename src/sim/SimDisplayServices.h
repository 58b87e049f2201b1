#pragma once

#include <map>

#include "platform/DisplayServices.h"
#include "sim/SimDisplays.h"
#include "sim/Trace.h"

namespace valdrix::sim {

/// Brightness functions over displays in memory. Opening, closing and every set are traced.
class SimDisplayServices : public platform::DisplayServices {
 public:
  /// What the system has of the library.
  struct Installation {
    bool hasLibrary = true;
    bool hasCanChangeBrightness = true;
    bool hasGetBrightness = true;
    bool hasSetBrightness = true;
  };

  /// The backlight of one display. Whoever changes it acts from outside.
  struct Backlight {
    float level = 0.5F;
    bool canChange = true;
    std::int32_t getStatus = 0;
    std::int32_t setStatus = 0;
    unsigned steps = 0;  ///< levels snap to multiples of 1/steps; 0: they don't
  };

  SimDisplayServices(const SimDisplays& displays, Trace& trace)
      : displays_(displays), trace_(trace) {}

  [[nodiscard]] std::unique_ptr<platform::DisplayServicesLibrary> open() override;

  Installation& installation() { return installation_; }
  Backlight& backlight(platform::DisplayID display) { return backlights_[display]; }

 private:
  class Library;

  [[nodiscard]] bool canChange(platform::DisplayID display);
  std::int32_t get(platform::DisplayID display, float& brightness);
  std::int32_t set(platform::DisplayID display, float brightness);

  const SimDisplays& displays_;
  Trace& trace_;
  Installation installation_;
  std::map<platform::DisplayID, Backlight> backlights_;
};

}  // namespace valdrix::sim
