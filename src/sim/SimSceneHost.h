#pragma once

#include <memory>
#include <string_view>

#include "platform/RunLoop.h"
#include "platform/SceneHost.h"
#include "sim/LineTracer.h"
#include "sim/SimSettingsWindow.h"
#include "sim/Trace.h"

namespace valdrix::sim {

/// The simulated desktop's menu bar and settings window. What the user would see of them is traced.
class SimSceneHost final : public platform::SceneHost {
 public:
  SimSceneHost(Trace& trace, platform::RunLoop& runLoop) : trace_(trace), runLoop_(runLoop) {}

  [[nodiscard]] Token addMenuBarExtra(platform::MenuBarExtra extra) override;
  [[nodiscard]] Token addSettings(view::SettingsScene scene) override;
  void openSettings(std::optional<std::size_t> tab) override;

  /// The user opens the menu. Whether there is one.
  bool openMenu();
  /// The user opens the menu and chooses a command. Whether there is one of that title.
  bool choose(std::string_view title);
  /// Nothing without settings.
  [[nodiscard]] SimSettingsWindow* settingsWindow() { return settingsWindow_.get(); }

 private:
  struct MenuBarItem {
    platform::MenuBarExtra extra;
    view::Menu menu;
    LineTracer tracer;
  };

  Trace& trace_;
  platform::RunLoop& runLoop_;
  std::unique_ptr<MenuBarItem> menuBarItem_;
  std::unique_ptr<SimSettingsWindow> settingsWindow_;
};

}  // namespace valdrix::sim
