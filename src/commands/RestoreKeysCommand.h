#pragma once

namespace valdrix::commands {

/// Gives the desktop the keys back that it was made to leave, in this process, for ten seconds at
/// most, and prints what has become of it. Needs no display and no agent. 0: all is as it was; 1:
/// not, and why. `argc` and `argv` are those of `main`.
int restoreKeysAlone(int& argc, char** argv);

}  // namespace valdrix::commands
