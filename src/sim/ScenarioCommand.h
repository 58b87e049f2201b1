#pragma once

#include <string_view>

#include "sim/Scenario.h"
#include "sim/ScenarioWords.h"

namespace valdrix::sim {

/// One word that a line of a scenario may begin with.
struct ScenarioCommand {
  std::string_view name;
  /// What the words after the name do. Takes those that it understands; throws a `ScenarioError`
  /// when they make no sense.
  Scenario::Action (*parse)(ScenarioWords& words);
};

}  // namespace valdrix::sim
