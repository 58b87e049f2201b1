#pragma once

#include <span>

#include "sim/ScenarioCommand.h"

namespace valdrix::sim {

/// The commands about the date, the user's calendars and who may read them.
[[nodiscard]] std::span<const ScenarioCommand> scenarioCalendarCommands();

}  // namespace valdrix::sim
