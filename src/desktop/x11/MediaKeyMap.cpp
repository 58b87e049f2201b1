#include "desktop/x11/MediaKeyMap.h"

#include <algorithm>
#include <utility>
#include <xkbcommon/xkbcommon-keysyms.h>

namespace valdrix::desktop {

namespace {

constexpr unsigned firstKeycode = 8;
constexpr unsigned lastKeycode = 255;
constexpr std::uint32_t groupCount = 4;
constexpr unsigned groupShift = 13;  // the keyboard extension puts the layout into bits 13 and 14

std::optional<std::uint32_t> mediaKeyCode(xcb_keysym_t keysym) {
  switch (keysym) {
    case XKB_KEY_XF86AudioRaiseVolume:
      return 0;
    case XKB_KEY_XF86AudioLowerVolume:
      return 1;
    case XKB_KEY_XF86MonBrightnessUp:
      return 2;
    case XKB_KEY_XF86MonBrightnessDown:
      return 3;
    case XKB_KEY_XF86AudioMute:
      return 7;
    default:
      return std::nullopt;
  }
}

}  // namespace

MediaKeyMap::MediaKeyMap(const Keymap& keymap, KeyModifiers modifiers)
    : modifiers_(std::move(modifiers)) {
  for (unsigned key = firstKeycode; key <= lastKeycode; ++key) {
    const auto keycode = static_cast<xcb_keycode_t>(key);
    const auto symbols = keymap.keysyms(keycode);
    if (std::any_of(symbols.begin(), symbols.end(), mediaKeyCode)) add(keymap, keycode);
  }
}

void MediaKeyMap::add(const Keymap& keymap, xcb_keycode_t key) {
  for (const auto modifiers : modifiers_.neutralCombinations()) {
    for (std::uint32_t group = 0; group < groupCount; ++group) {
      if (const auto code = mediaKeyCode(keymap.keysym(key, group, modifiers))) {
        entries_.push_back({{key, modifiers}, group, *code});
      }
    }
  }
}

std::optional<std::uint32_t> MediaKeyMap::code(xcb_keycode_t key, std::uint16_t state) const {
  const auto relevant = static_cast<std::uint16_t>(state & (XCB_MOD_MASK_SHIFT | modifiers_.locks));
  const auto group = (static_cast<std::uint32_t>(state) >> groupShift) % groupCount;
  const auto entry = std::find_if(entries_.begin(), entries_.end(), [&](const Entry& candidate) {
    return candidate.combination == KeyCombination{key, relevant} && candidate.group == group;
  });
  return entry == entries_.end() ? std::nullopt : std::optional(entry->code);
}

std::set<KeyCombination> MediaKeyMap::combinations(const std::set<std::uint32_t>& codes) const {
  std::set<KeyCombination> wanted;
  for (const auto& entry : entries_) {
    if (codes.contains(entry.code)) wanted.insert(entry.combination);
  }
  return wanted;
}

}  // namespace valdrix::desktop
