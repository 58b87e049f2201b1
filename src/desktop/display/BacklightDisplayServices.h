#pragma once

#include <filesystem>
#include <utility>

#include "desktop/display/BacklightDisplays.h"
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
  /// `displays` must outlive what is opened. `root` is where `run/systemd` is found.
  explicit BacklightDisplayServices(const BacklightDisplays& displays,
                                    std::filesystem::path root = "/")
      : displays_(displays), root_(std::move(root)) {}

  /// Null on a system without a backlight class.
  [[nodiscard]] std::unique_ptr<platform::DisplayServicesLibrary> open() override;

 private:
  const BacklightDisplays& displays_;
  std::filesystem::path root_;
};

}  // namespace valdrix::desktop
