#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <tuple>
#include <vector>

#include <xcb/xcb.h>

#include "desktop/x11/KeyModifiers.h"
#include "desktop/x11/Keymap.h"
#include "platform/MediaKey.h"

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

/// Where the media keys are on a keyboard. The same key may be on several keycodes, and a keycode
/// may be a media key in one layout or with Shift only.
class MediaKeyMap {
 public:
  MediaKeyMap() = default;
  MediaKeyMap(const Keymap& keymap, const KeyModifiers& modifiers);

  /// Which media key this is under an event's `state`; none when it is none.
  [[nodiscard]] std::optional<platform::MediaKey> key(xcb_keycode_t keycode,
                                                      std::uint16_t state) const;
  /// What has to be grabbed in order to see `keys` in layout `group` (from 0).
  [[nodiscard]] std::set<KeyCombination> combinations(const std::set<platform::MediaKey>& keys,
                                                      std::uint32_t group) const;
  [[nodiscard]] const KeyModifiers& modifiers() const { return modifiers_; }

 private:
  struct Entry {
    KeyCombination combination;
    std::uint32_t group;
    platform::MediaKey mediaKey;
  };
  void add(const Keymap& keymap, xcb_keycode_t key);

  KeyModifiers modifiers_;
  std::vector<Entry> entries_;
};

}  // namespace valdrix::desktop
