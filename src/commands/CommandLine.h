#pragma once

#include <string>
#include <variant>
#include <vector>

namespace valdrix::commands {

/// Runs the agent, or hands over to the one that runs.
struct Run {};
/// Prints the running agent's state as JSON.
struct Status {};
/// Ends the running agent.
struct Quit {};
/// Has the running agent ask the user for access to the calendars.
struct Access {};
/// Plays a scenario on the simulated desktop.
struct Simulate {
  std::string file;
  /// Where pictures go; empty for none.
  std::string framesFolder;
  /// Device pixels per point of the pictures, above 0.
  double scale = 1;
};
struct ShowVersion {};
struct ShowHelp {};
/// The words make no sense; the text says why.
struct Misuse {
  std::string reason;
};

using Command = std::variant<Run, Status, Quit, Access, Simulate, ShowVersion, ShowHelp, Misuse>;

/// What the words after the program's name ask for.
[[nodiscard]] Command parse(const std::vector<std::string>& words);

/// How the program is called.
[[nodiscard]] std::string usage();

}  // namespace valdrix::commands
