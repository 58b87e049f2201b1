#pragma once

namespace valdrix::commands {

/// Runs the agent until it is told to quit. 0: it ran, or handed over to the one that runs already;
/// 1: there is no display to run on, or the one that runs does not answer. `argc` and `argv` are
/// those of `main`.
int runAgent(int& argc, char** argv);

/// Prints the running agent's state; 1 when none runs.
int printStatus(int& argc, char** argv);

/// Has the running agent ask the user for access to the calendars, and prints what comes of it; 1
/// when none runs.
int requestCalendarAccess(int& argc, char** argv);

/// Ends the running agent; 1 when none runs.
int quitAgent(int& argc, char** argv);

}  // namespace valdrix::commands
