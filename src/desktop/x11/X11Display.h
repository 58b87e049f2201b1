#pragma once

namespace valdrix::desktop {

/// Whether the X server that DISPLAY names lets this process in. Waits for its answer.
[[nodiscard]] bool canConnectToX11Display();

}  // namespace valdrix::desktop
