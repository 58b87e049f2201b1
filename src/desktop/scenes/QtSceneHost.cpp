#include "desktop/scenes/QtSceneHost.h"

namespace valdrix::desktop {

Token QtSceneHost::addMenuBarExtra(platform::MenuBarExtra /*extra*/) { return {}; }
Token QtSceneHost::addSettings(view::SettingsScene /*scene*/) { return {}; }
void QtSceneHost::openSettings(std::optional<std::size_t> /*tab*/) {}

}  // namespace valdrix::desktop
