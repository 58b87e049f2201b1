#pragma once

#include <string>

#include <QStringList>

namespace valdrix::desktop {

/// The indicator that a desktop itself shows when the volume or the brightness changes, and what
/// the user can do where it gets in the way.
struct DesktopIndicator {
  enum class Cause {
    none,       ///< it has none; programs that it starts may have the keys all the same
    ownKeys,    ///< only for keys that the desktop has itself
    anyChange,  ///< whoever changed the level
  };

  std::string desktop;  ///< its name, for the user
  Cause cause;
  /// How the user makes the desktop leave the keys and keep its indicator to itself.
  std::string remedy;
};

/// That of the first desktop of `desktops`, named as in XDG_CURRENT_DESKTOP, that is known; null
/// when none is. Lasts as long as the program.
[[nodiscard]] const DesktopIndicator* indicatorOf(const QStringList& desktops);

}  // namespace valdrix::desktop
