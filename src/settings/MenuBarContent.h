#pragma once

#include <functional>

#include "platform/Application.h"
#include "platform/Workspace.h"
#include "settings/UpdateCheckService.h"
#include "view/Menu.h"

namespace valdrix {

/// The menu of the item in the desktop's bar. What it holds outlives it and its menus.
struct MenuBarContent {
  UpdateCheckService& updateCheckService;
  platform::Application& application;
  platform::Workspace& workspace;
  std::function<void()> openSettings;

  /// Also has the published version looked up, if that is due.
  [[nodiscard]] view::Menu body() const;
};

}  // namespace valdrix
