#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include <xcb/xcb.h>

namespace valdrix::desktop {

/// What the keys of an X keyboard mean, as it was when it was read.
class Keymap {
 public:
  virtual ~Keymap() = default;

  /// Every symbol that the key has in any layout and at any level.
  [[nodiscard]] virtual std::vector<xcb_keysym_t> keysyms(xcb_keycode_t key) const = 0;
  /// The symbol of the key in layout `group` (from 0) while the real modifiers in `modifiers` are
  /// down or locked.
  [[nodiscard]] virtual xcb_keysym_t keysym(xcb_keycode_t key, std::uint32_t group,
                                            std::uint16_t modifiers) const = 0;
};

/// Reads the keymap with all its layouts and levels; null when the server is gone or the connection
/// has not been set up for it (see `setUpXkb`). Waits for the server.
[[nodiscard]] std::unique_ptr<Keymap> readXkbKeymap(xcb_connection_t* connection);

}  // namespace valdrix::desktop
