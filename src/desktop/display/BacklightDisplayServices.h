#pragma once

#include <filesystem>

#include "desktop/display/BacklightAccess.h"
#include "desktop/display/BacklightDisplays.h"
#include "desktop/display/BacklightWriter.h"
#include "platform/DisplayServices.h"

namespace valdrix::desktop {

/// Brightness by the backlight class.
///
/// Some panels know but a few values, so that a small step would round to the value that is there,
/// and steps in a row would never leave it. So a level that was set is kept beside the value that
/// stands for it, and is reported for as long as the backlight has that value; any other value, be
/// it another program's or the driver's own idea, is reported as it is.
class BacklightDisplayServices final : public platform::DisplayServices {
 public:
  /// This and `displays` must outlive what is opened. `root` is where `run/systemd` is found.
  explicit BacklightDisplayServices(const BacklightDisplays& displays,
                                    const std::filesystem::path& root = "/");

  /// Null on a system without a backlight class.
  [[nodiscard]] std::unique_ptr<platform::DisplayServicesLibrary> open() override;

  /// Whether what is set reaches the built-in display's backlight.
  [[nodiscard]] BacklightAccess& access() { return access_; }

 private:
  const BacklightDisplays& displays_;
  BacklightWriter writer_;
  BacklightAccess access_;
};

}  // namespace valdrix::desktop
