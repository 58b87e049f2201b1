#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace valdrix::sim {

class ScenarioPlayer;

/// A script for the simulated desktop: what happens when, and what is expected to come of it. How
/// one is written is described in docs/scenarios.md.
struct Scenario {
  /// Something that happens to the desktop that is played on. Throws a `ScenarioError` when it
  /// cannot.
  using Action = std::function<void(ScenarioPlayer&)>;

  struct Step {
    int line = 0;
    /// Seconds, after the start or, when `isRelative`, after the step before.
    double time = 0;
    bool isRelative = true;
    /// Empty for a step that only waits.
    Action action{};
  };

  std::vector<Step> steps;
  /// The channels of the trace that count; all of them when empty.
  std::vector<std::string> channels;
  /// The trace that is expected, a line each; nothing when the scenario expects none.
  std::optional<std::vector<std::string>> expectedTrace;

  /// Reads a scenario. Throws a `ScenarioError` that names the line.
  [[nodiscard]] static Scenario parse(std::string_view text);
};

}  // namespace valdrix::sim
