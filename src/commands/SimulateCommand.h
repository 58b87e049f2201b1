#pragma once

#include "commands/CommandLine.h"

namespace valdrix::commands {

/// Plays a scenario on the simulated desktop, with the real fonts, and prints its trace. Needs no
/// display. Exit code as `sim::simulate`.
int simulateScenario(const Simulate& command, int& argc, char** argv);

}  // namespace valdrix::commands
