#pragma once

#include <string>

#include <QStringList>

namespace valdrix::desktop {

/// The indicator that a desktop itself shows when the volume or the brightness changes.
struct DesktopIndicator {
  enum class Cause {
    ownKeys,    ///< only for keys that the desktop has itself
    anyChange,  ///< whoever changed the level
  };

  std::string desktop;  ///< its name, for the user
  Cause cause;
  /// How the user switches it off.
  std::string remedy;
};

/// That of the first desktop of `desktops`, named as in XDG_CURRENT_DESKTOP, that is known to show
/// one; null when none is. Lasts as long as the program.
[[nodiscard]] const DesktopIndicator* indicatorOf(const QStringList& desktops);

}  // namespace valdrix::desktop
