#pragma once

#include <vector>

#include "platform/SceneHost.h"
#include "sim/LineTracer.h"
#include "view/Menu.h"
#include "view/SettingsScene.h"

namespace valdrix::sim {

/// The item in the menu bar, and its menu in one line.
[[nodiscard]] std::vector<SeenLine> linesOf(const platform::MenuBarExtra& extra,
                                            const view::Menu& menu);

/// A tab from top to bottom.
[[nodiscard]] std::vector<SeenLine> linesOf(const view::TabContent& content);

}  // namespace valdrix::sim
