#pragma once

#include <optional>

#include "commands/CommandLine.h"

namespace valdrix::commands {

/// Runs the agent until it is told to quit, with its settings open where that was asked for. Where
/// one runs already, that one opens its settings. 0: it ran, or handed over to the one that runs;
/// 1: there is no display to run on, or the one that runs does not answer. `argc` and `argv` are
/// those of `main`.
int runAgent(const std::optional<OpenSettings>& opened, int& argc, char** argv);

}  // namespace valdrix::commands
