#pragma once

#include <optional>
#include <string>
#include <vector>

#include "desktop/display/BacklightTree.h"

namespace valdrix::desktop {

/// A display in use.
struct ActiveDisplay {
  std::string name;  ///< of its connector, or of its backlight where no connector is known
  bool isBuiltin = false;
  std::optional<Backlight> backlight;  ///< only the built-in panel's
};

/// The displays in use, of which one at most has the built-in panel's backlight.
///
/// A backlight can be the panel's unless it is a monitor's, or every panel that it could belong to
/// is disconnected or switched off: the panel on its own connector, else those of its card, else
/// those of the machine. A machine that shows no panel connector at all has nothing against it.
/// Among several the order is: firmware, platform, raw; then one on a connector, one on a card with
/// a panel, any other; then by name.
[[nodiscard]] std::vector<ActiveDisplay> activeDisplays(const BacklightTree& tree);

}  // namespace valdrix::desktop
