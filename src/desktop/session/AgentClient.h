#pragma once

#include <string>

#include "desktop/session/SessionBus.h"

namespace valdrix::desktop {

/// Speaks to the running agent on behalf of a command. Each call ends within two seconds or so.
class AgentClient {
 public:
  struct Answer {
    /// What the command ends with: 0, or 1 when no agent could be asked.
    int exitCode;
    /// What it prints, without a line end: the answer, or one line that says what is wrong.
    std::string text;
  };

  /// `bus` outlives this.
  explicit AgentClient(SessionBus& bus) : bus_(bus) {}

  /// The agent's observable state.
  [[nodiscard]] Answer status();
  /// Has the agent ask the user for access to the calendars, unless that is settled.
  [[nodiscard]] Answer requestCalendarAccess();
  /// Asks the agent to end.
  [[nodiscard]] Answer quit();

 private:
  [[nodiscard]] Answer ask(const char* method);

  SessionBus& bus_;
};

}  // namespace valdrix::desktop
