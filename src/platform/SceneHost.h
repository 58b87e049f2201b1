#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

#include "observation/Token.h"
#include "view/Menu.h"
#include "view/SettingsScene.h"

namespace valdrix::platform {

/// An item in the desktop's bar with a menu. `content` is asked for when the item appears, which is
/// a later turn of the loop than the one that added it, each time the menu is about to open, and
/// whenever a value that it read has changed.
struct MenuBarExtra {
  std::string title;
  std::string symbol;
  std::function<view::Menu()> content;
};

/// Shows the program's scenes with the desktop's own controls. A scene lasts as long as its token;
/// there is one of each kind at most. Main thread only.
class SceneHost {
 public:
  virtual ~SceneHost() = default;

  /// Where the desktop has no such bar, the menu is reached in another way.
  [[nodiscard]] virtual Token addMenuBarExtra(MenuBarExtra extra) = 0;
  /// Says what the settings window shows; it stays closed until `openSettings`. Ending the token
  /// closes it.
  [[nodiscard]] virtual Token addSettings(view::SettingsScene scene) = 0;
  /// Opens the settings window, or brings the open one to the front; on the tab with that index, or
  /// on the one that it showed last, at first the first. Nothing without settings.
  virtual void openSettings(std::optional<std::size_t> tab = std::nullopt) = 0;
};

}  // namespace valdrix::platform
