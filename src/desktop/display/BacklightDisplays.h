#pragma once

#include <filesystem>
#include <map>
#include <string>

#include "desktop/display/ActiveDisplay.h"
#include "platform/Displays.h"

namespace valdrix::desktop {

/// The displays as the kernel's connectors and backlights. A connector keeps its ID for the life of
/// the process; what is known of a display is what the latest list said.
class BacklightDisplays final : public platform::Displays {
 public:
  /// `sysfs` is where the kernel's device tree is mounted.
  explicit BacklightDisplays(std::filesystem::path sysfs = "/sys") : sysfs_(std::move(sysfs)) {}

  [[nodiscard]] std::optional<std::vector<platform::DisplayID>> getActiveDisplayList()
      const override;
  [[nodiscard]] bool isBuiltin(platform::DisplayID display) const override;

  /// The display's backlight, or null. Good until the next list.
  [[nodiscard]] const Backlight* backlight(platform::DisplayID display) const;
  /// Whether this system has the notion of a backlight.
  [[nodiscard]] bool hasBacklightClass() const;

 private:
  [[nodiscard]] platform::DisplayID idOf(const std::string& name) const;

  std::filesystem::path sysfs_;
  mutable std::map<std::string, platform::DisplayID> ids_;
  mutable std::map<platform::DisplayID, ActiveDisplay> active_;
};

}  // namespace valdrix::desktop
