#pragma once

#include <optional>

#include "commands/CommandLine.h"

namespace valdrix::commands {

/// Commands to the running agent. Each prints the answer and returns the exit code: 0, or 1 when no
/// agent runs or it did not do what was asked. `argc` and `argv` are those of `main`.
int printStatus(int& argc, char** argv);
int requestCalendarAccess(int& argc, char** argv);
int pressKey(const PressKey& command, int& argc, char** argv);
/// Waits until the desktop has done it, for ten seconds at most.
int entrustKeys(int& argc, char** argv);
/// Likewise. None: no agent runs that could be asked.
std::optional<int> restoreKeys(int& argc, char** argv);
int showLevel(const ShowLevel& command, int& argc, char** argv);
int describeHousings(int& argc, char** argv);
/// Lasts until the user is done looking: an empty line, the end of the input or an interrupt. A
/// line with another size shows that one.
int previewHousing(const PreviewHousing& command, int& argc, char** argv);
int quitAgent(int& argc, char** argv);

}  // namespace valdrix::commands
