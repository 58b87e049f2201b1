#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "platform/Displays.h"

namespace valdrix::platform {

/// The system's brightness functions, loaded at run time. Each lookup gives the function, or an
/// empty one when this system does not have it. The functions stay valid while the library lives.
/// Main thread only; a call takes at most a few milliseconds.
class DisplayServicesLibrary {
 public:
  /// Whether the brightness of a display can be changed.
  using CanChangeBrightness = std::function<bool(DisplayID display)>;
  /// Reads a brightness from 0 (darkest) to 1; status 0 is success, else `brightness` is untouched.
  using GetBrightness = std::function<std::int32_t(DisplayID display, float& brightness)>;
  /// Sets a brightness from 0 to 1; status 0 means that the display has it.
  using SetBrightness = std::function<std::int32_t(DisplayID display, float brightness)>;

  virtual ~DisplayServicesLibrary() = default;

  [[nodiscard]] virtual CanChangeBrightness canChangeBrightness() = 0;
  [[nodiscard]] virtual GetBrightness getBrightness() = 0;
  [[nodiscard]] virtual SetBrightness setBrightness() = 0;
};

/// Finds the brightness functions.
class DisplayServices {
 public:
  virtual ~DisplayServices() = default;

  /// The library, or null when this system has none.
  [[nodiscard]] virtual std::unique_ptr<DisplayServicesLibrary> open() = 0;
};

}  // namespace valdrix::platform
