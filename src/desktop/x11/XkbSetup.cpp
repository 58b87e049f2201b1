#include "desktop/x11/XkbSetup.h"

#include <xkbcommon/xkbcommon-x11.h>
// xcb's header has a field of this name.
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit

#include "desktop/x11/XcbHandles.h"

namespace valdrix::desktop {

namespace {

void setFlags(xcb_connection_t* connection) {
  // Without the last two, the state of a grabbed key says nothing of the layout in use.
  constexpr std::uint32_t flags = XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT |
                                  XCB_XKB_PER_CLIENT_FLAG_GRABS_USE_XKB_STATE |
                                  XCB_XKB_PER_CLIENT_FLAG_LOOKUP_STATE_WHEN_GRABBED;
  const auto cookie =
      xcb_xkb_per_client_flags(connection, XCB_XKB_ID_USE_CORE_KBD, flags, flags, 0, 0, 0);
  xcb_discard_reply(connection, cookie.sequence);
}

void selectKeymapEvents(xcb_connection_t* connection) {
  constexpr std::uint16_t keymap =
      XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY;
  constexpr std::uint16_t events = keymap | XCB_XKB_EVENT_TYPE_STATE_NOTIFY;
  constexpr std::uint16_t parts = XCB_XKB_MAP_PART_KEY_TYPES | XCB_XKB_MAP_PART_KEY_SYMS |
                                  XCB_XKB_MAP_PART_MODIFIER_MAP | XCB_XKB_MAP_PART_VIRTUAL_MODS |
                                  XCB_XKB_MAP_PART_VIRTUAL_MOD_MAP;
  // Of the state the layout alone: modifiers go down with every capital that is typed.
  xcb_xkb_select_events_details_t details{};
  details.affectState = XCB_XKB_STATE_PART_GROUP_STATE;
  details.stateDetails = XCB_XKB_STATE_PART_GROUP_STATE;
  xcb_xkb_select_events_aux(connection, XCB_XKB_ID_USE_CORE_KBD, events, 0, keymap, parts, parts,
                            &details);
}

}  // namespace

std::optional<std::uint8_t> setUpXkb(xcb_connection_t* connection) {
  std::uint8_t eventType = 0;
  if (!xkb_x11_setup_xkb_extension(
          connection, XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
          XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, &eventType, nullptr)) {
    return std::nullopt;
  }
  setFlags(connection);
  selectKeymapEvents(connection);
  return eventType;
}

std::optional<std::uint32_t> layoutIn(const xcb_generic_event_t& event) {
  const auto& notice = reinterpret_cast<const xcb_xkb_state_notify_event_t&>(event);
  return notice.xkbType == XCB_XKB_STATE_NOTIFY ? std::optional<std::uint32_t>(notice.group)
                                                : std::nullopt;
}

std::uint32_t readLayout(xcb_connection_t* connection) {
  const auto state = xcbOwned(xcb_xkb_get_state_reply(
      connection, xcb_xkb_get_state(connection, XCB_XKB_ID_USE_CORE_KBD), nullptr));
  return state ? state->group : 0U;
}

}  // namespace valdrix::desktop
