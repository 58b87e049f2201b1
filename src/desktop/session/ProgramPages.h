#pragma once

namespace valdrix::desktop {

/// Takes the pages of the program's and its libraries' code and constants out of this process. The
/// system still has them, so each comes back when it is used; what only the start used does not.
/// For when the start is over, in a program that then waits for days.
void releaseProgramPages();

}  // namespace valdrix::desktop
