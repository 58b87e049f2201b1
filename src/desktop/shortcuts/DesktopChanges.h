#pragma once

#include <set>
#include <vector>

#include "desktop/shortcuts/KnownDesktop.h"

namespace valdrix::desktop {

/// The settings that make each desktop leave `keys`, as `KnownDesktop::Changes`. What each is worth
/// was found out on the desktops themselves; docs/keys.md tells users the same.

/// GNOME's settings daemon (tried: 43). Its volume-up-static and the like hold the keyboard's own
/// keys. It reads them when it starts and whenever the setting without -static changes. Custom
/// shortcuts give the keys to commands: so they work in the overview, too, where GNOME has the
/// whole keyboard.
[[nodiscard]] std::vector<SettingChange> gnomeChanges(const KnownDesktop::Keys& keys,
                                                      const std::string& program);
/// Plasma's global shortcuts (tried: 5.27; those of Plasma 6 are known from its users'
/// configurations). The keys become this program's own global shortcuts.
[[nodiscard]] std::vector<SettingChange> plasmaChanges(const KnownDesktop::Keys& keys,
                                                       const std::string& program);
/// Xfce's PulseAudio plug-in of the panel (tried: 0.4.5), which has the three volume keys or none
/// and notifies of any change of the volume.
[[nodiscard]] std::vector<SettingChange> xfceChanges(const KnownDesktop::Keys& keys,
                                                     const std::string& program);
/// MATE's settings daemon (tried: 1.26). One shortcut a key; an empty one is none.
[[nodiscard]] std::vector<SettingChange> mateChanges(const KnownDesktop::Keys& keys,
                                                     const std::string& program);
/// Cinnamon's settings daemon (tried: 5.6). Lists of shortcuts.
[[nodiscard]] std::vector<SettingChange> cinnamonChanges(const KnownDesktop::Keys& keys,
                                                         const std::string& program);

}  // namespace valdrix::desktop
