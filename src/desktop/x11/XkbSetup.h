#pragma once

#include <cstdint>
#include <optional>

#include <xcb/xcb.h>

namespace valdrix::desktop {

/// Sets a connection up for the keyboard extension: it is told when the keymap changes and when
/// another keyboard takes over, and a held key repeats its press without releases in between. The
/// event type of everything that the extension sends; nothing when the server lacks it. Waits for
/// the server.
[[nodiscard]] std::optional<std::uint8_t> setUpXkb(xcb_connection_t* connection);

}  // namespace valdrix::desktop
