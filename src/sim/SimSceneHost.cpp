#include "sim/SimSceneHost.h"

#include <utility>

#include "sim/SceneLines.h"

namespace valdrix::sim {

Token SimSceneHost::addMenuBarExtra(platform::MenuBarExtra extra) {
  const auto lines = [this] {
    auto& item = *menuBarItem_;
    item.menu = item.extra.content();
    return linesOf(item.extra, item.menu);
  };
  menuBarItem_.reset(
      new MenuBarItem{std::move(extra), {}, LineTracer("menu", lines, trace_, runLoop_)});
  menuBarItem_->tracer.schedule();
  return Token([this] { menuBarItem_.reset(); });
}

Token SimSceneHost::addSettings(view::SettingsScene scene) {
  settingsWindow_ = std::make_unique<SimSettingsWindow>(std::move(scene), trace_, runLoop_);
  return Token([this] { settingsWindow_.reset(); });
}

void SimSceneHost::openSettings(std::optional<std::size_t> tab) {
  if (settingsWindow_) settingsWindow_->open(tab);
}

bool SimSceneHost::openMenu() {
  if (!menuBarItem_) return false;
  menuBarItem_->tracer.update();
  return true;
}

bool SimSceneHost::choose(std::string_view title) {
  if (!openMenu()) return false;
  for (const auto& item : menuBarItem_->menu.items) {
    const auto* command = std::get_if<view::MenuCommand>(&item);
    if (!command || command->title != title) continue;
    // The command may change the menu that it stands in.
    const auto action = command->action;
    action();
    return true;
  }
  return false;
}

}  // namespace valdrix::sim
