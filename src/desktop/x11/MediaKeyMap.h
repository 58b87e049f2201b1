#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <tuple>
#include <vector>

#include <xcb/xcb.h>

#include "desktop/x11/KeyModifiers.h"
#include "desktop/x11/Keymap.h"

namespace valdrix::desktop {

/// A key with exactly these modifiers.
struct KeyCombination {
  xcb_keycode_t key = 0;
  std::uint16_t modifiers = 0;
  bool operator==(const KeyCombination&) const = default;
  bool operator<(const KeyCombination& other) const {
    return std::tie(key, modifiers) < std::tie(other.key, other.modifiers);
  }
};

/// The key codes of the port: volume up 0, volume down 1, brightness up 2, brightness down 3,
/// mute 7.
inline constexpr std::uint32_t mediaKeyCodes[] = {0, 1, 2, 3, 7};

/// Where the media keys are on a keyboard. The same key may be on several keycodes, and a keycode
/// may be a media key in one layout or with Shift only.
class MediaKeyMap {
 public:
  MediaKeyMap() = default;
  MediaKeyMap(const Keymap& keymap, KeyModifiers modifiers);

  /// Which media key this is under an event's `state`; none when it is none.
  [[nodiscard]] std::optional<std::uint32_t> code(xcb_keycode_t key, std::uint16_t state) const;
  /// What has to be grabbed in order to see the media keys in `codes` in every layout.
  [[nodiscard]] std::set<KeyCombination> combinations(const std::set<std::uint32_t>& codes) const;
  [[nodiscard]] const KeyModifiers& modifiers() const { return modifiers_; }

 private:
  struct Entry {
    KeyCombination combination;
    std::uint32_t group;
    std::uint32_t code;
  };
  void add(const Keymap& keymap, xcb_keycode_t key);

  KeyModifiers modifiers_;
  std::vector<Entry> entries_;
};

}  // namespace valdrix::desktop
