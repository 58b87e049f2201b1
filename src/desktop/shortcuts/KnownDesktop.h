#pragma once

#include <functional>
#include <set>
#include <string>
#include <vector>

#include <QStringList>

#include "desktop/shortcuts/DesktopIndicator.h"
#include "desktop/shortcuts/SettingChange.h"
#include "platform/MediaKey.h"

namespace valdrix::desktop {

/// A desktop and its ways with the media keys.
struct KnownDesktop {
  using Keys = std::set<platform::MediaKey>;
  /// `program` is what commands are given to, with its path.
  using Changes =
      std::function<std::vector<SettingChange>(const Keys& keys, const std::string& program)>;

  std::string id;  ///< as in XDG_CURRENT_DESKTOP
  DesktopIndicator indicator;
  /// What has to change, in this order, so that the desktop leaves `keys`; null where no settings
  /// are changed for the user.
  Changes changes = nullptr;
  /// The keys that settings can make it leave.
  Keys keys = {};
  /// The keys that none can, and what helps then, for the user.
  Keys keptKeys = {};
  std::string keptNote = {};
  /// Whether keys that it leaves come as commands.
  bool sendsCommands = false;
  /// Whether keys that it leaves come as its global shortcuts.
  bool leavesToShortcuts = false;
};

/// The first of `desktops`, named as in XDG_CURRENT_DESKTOP, that is known; null when none is.
/// Lasts as long as the program.
[[nodiscard]] const KnownDesktop* knownDesktop(const QStringList& desktops);
/// The known desktop with this id; null when there is none.
[[nodiscard]] const KnownDesktop* knownDesktop(const std::string& id);

/// The desktops that this session says it is.
[[nodiscard]] QStringList sessionDesktops();

}  // namespace valdrix::desktop
