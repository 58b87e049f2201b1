#include "desktop/x11/MediaKeyMap.h"

#include <algorithm>
#include <xkbcommon/xkbcommon-keysyms.h>

namespace valdrix::desktop {

using platform::MediaKey;

namespace {

constexpr unsigned firstKeycode = 8;
constexpr unsigned lastKeycode = 255;
constexpr std::uint32_t groupCount = 4;
constexpr unsigned groupShift = 13;  // the keyboard extension puts the layout into bits 13 and 14

std::optional<MediaKey> mediaKey(xcb_keysym_t keysym) {
  switch (keysym) {
    case XKB_KEY_XF86AudioRaiseVolume:
      return MediaKey::volumeUp;
    case XKB_KEY_XF86AudioLowerVolume:
      return MediaKey::volumeDown;
    case XKB_KEY_XF86MonBrightnessUp:
      return MediaKey::brightnessUp;
    case XKB_KEY_XF86MonBrightnessDown:
      return MediaKey::brightnessDown;
    case XKB_KEY_XF86AudioMute:
      return MediaKey::mute;
    default:
      return std::nullopt;
  }
}

}  // namespace

MediaKeyMap::MediaKeyMap(const Keymap& keymap, const KeyModifiers& modifiers)
    : modifiers_(modifiers) {
  for (unsigned key = firstKeycode; key <= lastKeycode; ++key) {
    const auto keycode = static_cast<xcb_keycode_t>(key);
    const auto symbols = keymap.keysyms(keycode);
    if (std::any_of(symbols.begin(), symbols.end(), mediaKey)) add(keymap, keycode);
  }
}

void MediaKeyMap::add(const Keymap& keymap, xcb_keycode_t key) {
  for (const auto modifiers : modifiers_.neutralCombinations()) {
    for (std::uint32_t group = 0; group < groupCount; ++group) {
      if (const auto found = mediaKey(keymap.keysym(key, group, modifiers))) {
        entries_.push_back({{key, modifiers}, group, *found});
      }
    }
  }
}

std::optional<MediaKey> MediaKeyMap::key(xcb_keycode_t keycode, std::uint16_t state) const {
  const auto relevant = static_cast<std::uint16_t>(state & (XCB_MOD_MASK_SHIFT | modifiers_.locks));
  const auto group = (static_cast<std::uint32_t>(state) >> groupShift) % groupCount;
  const auto entry = std::find_if(entries_.begin(), entries_.end(), [&](const Entry& candidate) {
    return candidate.combination == KeyCombination{keycode, relevant} && candidate.group == group;
  });
  return entry == entries_.end() ? std::nullopt : std::optional(entry->mediaKey);
}

std::set<KeyCombination> MediaKeyMap::combinations(const std::set<MediaKey>& keys,
                                                   std::uint32_t group) const {
  std::set<KeyCombination> wanted;
  for (const auto& entry : entries_)
    if (entry.group == group % groupCount && keys.contains(entry.mediaKey))
      wanted.insert(entry.combination);
  return wanted;
}

}  // namespace valdrix::desktop
