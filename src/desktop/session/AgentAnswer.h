#pragma once

#include <string>

namespace valdrix::desktop {

/// What the agent says to a command.
struct AgentAnswer {
  /// Whether it did what was asked.
  bool isDone;
  /// For the user, without a line end: what was asked for, or why it was not done; may be empty.
  std::string text;
};

}  // namespace valdrix::desktop
