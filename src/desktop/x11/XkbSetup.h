#pragma once

#include <cstdint>
#include <optional>

#include <xcb/xcb.h>

namespace valdrix::desktop {

/// Sets a connection up for the keyboard extension: it is told when the keymap changes and when
/// another keyboard or layout takes over, and a held key repeats its press without releases in
/// between. The event type of everything that the extension sends; nothing when the server lacks
/// it. Waits for the server.
[[nodiscard]] std::optional<std::uint8_t> setUpXkb(xcb_connection_t* connection);

/// The layout (from 0) that an event of the extension says is in use; none when it says something
/// else.
[[nodiscard]] std::optional<std::uint32_t> layoutIn(const xcb_generic_event_t& event);
/// The layout in use now, from 0. Waits for the server.
[[nodiscard]] std::uint32_t readLayout(xcb_connection_t* connection);

}  // namespace valdrix::desktop
