#pragma once

namespace valdrix::desktop {

/// Starts the program anew in this process, once the display it was on has gone: Qt cannot outlive
/// its display, and neither can what was drawn there. Nothing is lost, because all that the agent
/// shows is somebody else's. Returns only when that is impossible.
void restartWithoutDisplay();

/// Whether this is such a new start. Says so once: programs started from here are none.
[[nodiscard]] bool isRestartWithoutDisplay();

/// Restarts, too, when Qt is about to end the process for the same reason and sees it first.
void restartWhereQtWouldEnd();

/// Calls `isThere` with growing pauses until it holds, for a minute at most. Whether it holds. A
/// session that has ended must not leave the agent behind.
[[nodiscard]] bool awaitDisplay(bool (*isThere)());

}  // namespace valdrix::desktop
