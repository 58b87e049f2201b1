#pragma once

#include "sim/Scenario.h"
#include "sim/ScenarioWords.h"

namespace valdrix::sim {

/// What the words of one command do. Takes them all; throws a `ScenarioError` when they make no
/// command.
[[nodiscard]] Scenario::Action parseScenarioCommand(ScenarioWords& words);

}  // namespace valdrix::sim
