#pragma once

#include "settings/SettingsEnvironment.h"
#include "view/SettingsScene.h"

namespace valdrix {

/// The settings window with its four tabs.
struct SettingsView {
  SettingsEnvironment environment;

  [[nodiscard]] view::SettingsScene body() const;
};

}  // namespace valdrix
