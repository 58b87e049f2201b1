#pragma once

#include <string>

namespace valdrix::desktop {

/// Why no panel can be shown on the compositor that WAYLAND_DISPLAY names; empty when one can. For
/// the status and the log, in English. Waits for the compositor's answer; needs no event loop.
[[nodiscard]] std::string whyNoWaylandPanel();

}  // namespace valdrix::desktop
