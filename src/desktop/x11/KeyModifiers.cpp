#include "desktop/x11/KeyModifiers.h"

#include <algorithm>
#include <span>
#include <xkbcommon/xkbcommon-keysyms.h>

#include "desktop/x11/XcbHandles.h"
#include "platform/EventTaps.h"

namespace valdrix::desktop {

namespace {

constexpr xcb_keysym_t optionSymbols[] = {XKB_KEY_Alt_L, XKB_KEY_Alt_R};
constexpr xcb_keysym_t commandSymbols[] = {XKB_KEY_Super_L, XKB_KEY_Super_R, XKB_KEY_Hyper_L,
                                           XKB_KEY_Hyper_R, XKB_KEY_Meta_L,  XKB_KEY_Meta_R};
constexpr xcb_keysym_t lockSymbols[] = {
    XKB_KEY_Caps_Lock,       XKB_KEY_Shift_Lock,     XKB_KEY_Num_Lock,
    XKB_KEY_Scroll_Lock,     XKB_KEY_ISO_Lock,       XKB_KEY_ISO_Level3_Lock,
    XKB_KEY_ISO_Level5_Lock, XKB_KEY_ISO_Group_Lock, XKB_KEY_Kana_Lock};

bool hasAny(const std::vector<xcb_keysym_t>& symbols, std::span<const xcb_keysym_t> wanted) {
  return std::any_of(symbols.begin(), symbols.end(), [&](xcb_keysym_t symbol) {
    return std::find(wanted.begin(), wanted.end(), symbol) != wanted.end();
  });
}

void classify(KeyModifiers& modifiers, std::uint16_t bit,
              const std::vector<xcb_keysym_t>& symbols) {
  if (hasAny(symbols, optionSymbols)) {
    modifiers.option |= bit;
  } else if (hasAny(symbols, commandSymbols)) {
    modifiers.command |= bit;
  } else if (hasAny(symbols, lockSymbols)) {
    modifiers.locks |= bit;
  }
}

}  // namespace

std::uint32_t KeyModifiers::flags(std::uint16_t state) const {
  namespace flag = platform::modifierFlag;
  return ((state & XCB_MOD_MASK_SHIFT) ? flag::shift : 0) |
         ((state & XCB_MOD_MASK_CONTROL) ? flag::control : 0) |
         ((state & option) ? flag::option : 0) | ((state & command) ? flag::command : 0);
}

std::vector<std::uint16_t> KeyModifiers::neutralCombinations() const {
  const unsigned neutral = XCB_MOD_MASK_SHIFT | locks;
  std::vector<std::uint16_t> combinations;
  for (unsigned modifiers = 0; modifiers <= neutral; ++modifiers) {
    if ((modifiers & ~neutral) == 0) combinations.push_back(static_cast<std::uint16_t>(modifiers));
  }
  return combinations;
}

KeyModifiers readKeyModifiers(xcb_connection_t* connection, const Keymap& keymap) {
  KeyModifiers modifiers;
  const auto reply = xcbOwned(
      xcb_get_modifier_mapping_reply(connection, xcb_get_modifier_mapping(connection), nullptr));
  if (!reply) return modifiers;
  const auto* keys = xcb_get_modifier_mapping_keycodes(reply.get());
  for (unsigned index = 0; index < 8; ++index) {
    std::vector<xcb_keysym_t> symbols;
    for (unsigned i = 0; i < reply->keycodes_per_modifier; ++i) {
      const auto key = keys[index * reply->keycodes_per_modifier + i];
      if (key == 0) continue;
      const auto more = keymap.keysyms(key);
      symbols.insert(symbols.end(), more.begin(), more.end());
    }
    const bool hasFixedMeaning = index <= XCB_MAP_INDEX_CONTROL;
    if (!hasFixedMeaning) classify(modifiers, static_cast<std::uint16_t>(1U << index), symbols);
  }
  return modifiers;
}

}  // namespace valdrix::desktop
