#pragma once

#include "platform/SceneHost.h"

namespace valdrix::desktop {

/// Scenes as Qt Widgets. Needs a QApplication.
class QtSceneHost final : public platform::SceneHost {
 public:
  [[nodiscard]] Token addMenuBarExtra(platform::MenuBarExtra extra) override;
  [[nodiscard]] Token addSettings(view::SettingsScene scene) override;
  void openSettings(std::optional<std::size_t> tab) override;
};

}  // namespace valdrix::desktop
