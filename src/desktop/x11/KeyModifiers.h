#pragma once

#include <cstdint>
#include <vector>

#include <xcb/xcb.h>

#include "desktop/x11/Keymap.h"

namespace valdrix::desktop {

/// Which of the eight real modifiers of an X keyboard does what. Only Shift, Lock and Control have
/// a fixed meaning; what the others mean is up to the keymap.
struct KeyModifiers {
  std::uint16_t option = 0;   ///< Alt
  std::uint16_t command = 0;  ///< Super, Hyper, and Meta where it is apart from Alt
  /// Caps Lock, and whatever else locks and says nothing about the key pressed with it.
  std::uint16_t locks = XCB_MOD_MASK_LOCK;

  /// The port's modifier flags for an X event's state.
  [[nodiscard]] std::uint32_t flags(std::uint16_t state) const;
  /// With or without Shift, under every combination of locks: the modifiers with which a media key
  /// is ours.
  [[nodiscard]] std::vector<std::uint16_t> neutralCombinations() const;
};

/// Reads the modifiers from the server and waits for it. Without a server: the defaults.
[[nodiscard]] KeyModifiers readKeyModifiers(xcb_connection_t* connection, const Keymap& keymap);

}  // namespace valdrix::desktop
