#pragma once

#include <span>

#include "sim/ScenarioCommand.h"

namespace valdrix::sim {

/// The commands about the menu, the settings window, start at login and the published version.
[[nodiscard]] std::span<const ScenarioCommand> scenarioSettingsCommands();

}  // namespace valdrix::sim
