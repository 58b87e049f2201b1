#pragma once

#include <variant>

#include "commands/CommandLine.h"

namespace valdrix::commands {

/// What is open from the start.
using Opened = std::variant<std::monostate, OpenSettings, OpenPermissions>;

/// Runs the agent until it is told to quit, with the window open that was asked for. Where one runs
/// already, that one opens it, or its settings. 0: it ran, or handed over to the one that runs;
/// 1: there is no display to run on, or the one that runs does not answer. `argc` and `argv` are
/// those of `main`.
int runAgent(const Opened& opened, int& argc, char** argv);

}  // namespace valdrix::commands
