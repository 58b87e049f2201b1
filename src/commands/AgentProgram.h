#pragma once

namespace valdrix::commands {

/// Goes on as the program that has the panel, with the same words and in the same process. A
/// command to the running agent is over before the libraries of that program would be loaded, which
/// is why there are two. Returns only when there is none: 1. `argv` is that of `main`.
int becomeAgent(char** argv);

}  // namespace valdrix::commands
