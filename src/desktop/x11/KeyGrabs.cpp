#include "desktop/x11/KeyGrabs.h"

#include <cstdint>
#include <utility>

#include <xcb/xinput.h>

#include "desktop/x11/XcbHandles.h"

namespace valdrix::desktop {

namespace {

/// The answers to one combination's two grabs.
struct Request {
  KeyCombination combination;
  xcb_void_cookie_t core;
  xcb_input_xi_passive_grab_device_cookie_t xinput;
};

Request sendGrabs(xcb_connection_t* connection, xcb_window_t root,
                  const KeyCombination& combination) {
  const std::uint32_t mask = XCB_INPUT_XI_EVENT_MASK_KEY_PRESS;
  const std::uint32_t modifiers = combination.modifiers;
  const auto core = xcb_grab_key_checked(connection, 0, root, combination.modifiers,
                                         combination.key, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
  const auto xinput = xcb_input_xi_passive_grab_device(
      connection, XCB_CURRENT_TIME, root, XCB_CURSOR_NONE, combination.key,
      XCB_INPUT_DEVICE_ALL_MASTER, 1, 1, XCB_INPUT_GRAB_TYPE_KEYCODE, XCB_INPUT_GRAB_MODE_22_ASYNC,
      XCB_INPUT_GRAB_MODE_22_ASYNC, XCB_INPUT_GRAB_OWNER_NO_OWNER, &mask, &modifiers);
  return {combination, core, xinput};
}

bool isDenied(xcb_connection_t* connection, const Request& request) {
  const auto answer =
      xcbOwned(xcb_input_xi_passive_grab_device_reply(connection, request.xinput, nullptr));
  const bool isCoreDenied =
      static_cast<bool>(xcbOwned(xcb_request_check(connection, request.core)));
  // The answer lists the modifiers with which it failed.
  return isCoreDenied || !answer || answer->num_modifiers > 0;
}

std::vector<Request> sendGrabs(xcb_connection_t* connection, const std::vector<xcb_window_t>& roots,
                               const std::set<KeyCombination>& wanted) {
  std::vector<Request> requests;
  for (const auto& combination : wanted)
    for (const auto root : roots) requests.push_back(sendGrabs(connection, root, combination));
  return requests;
}

// From the last to the first, so that there is one wait for them all.
std::set<xcb_keycode_t> deniedOf(xcb_connection_t* connection,
                                 const std::vector<Request>& requests) {
  std::set<xcb_keycode_t> denied;
  for (auto request = requests.rbegin(); request != requests.rend(); ++request)
    if (isDenied(connection, *request)) denied.insert(request->combination.key);
  return denied;
}

}  // namespace

KeyGrabs::KeyGrabs(xcb_connection_t* connection) : connection_(connection) {
  if (xcb_connection_has_error(connection)) return;
  auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
  for (; screens.rem; xcb_screen_next(&screens)) roots_.push_back(screens.data->root);
}

std::set<xcb_keycode_t> KeyGrabs::probe(const std::set<KeyCombination>& wanted) {
  const auto requests = sendGrabs(connection_, roots_, wanted);
  for (const auto& combination : wanted) ungrab(combination);
  synchronize();
  return deniedOf(connection_, requests);
}

std::set<xcb_keycode_t> KeyGrabs::grab(const std::set<KeyCombination>& wanted) {
  auto denied = deniedOf(connection_, sendGrabs(connection_, roots_, wanted));
  for (const auto& combination : wanted) {
    if (denied.contains(combination.key)) {
      ungrab(combination);
      held_.erase(combination);
    } else {
      held_.insert(combination);
    }
  }
  // Of what is denied in one way the other way may have been had for a moment.
  if (!denied.empty()) synchronize();
  return denied;
}

void KeyGrabs::releaseAllBut(const std::set<KeyCombination>& kept) {
  const auto count = held_.size();
  for (auto combination = held_.begin(); combination != held_.end();) {
    if (kept.contains(*combination)) {
      ++combination;
    } else {
      ungrab(*combination);
      combination = held_.erase(combination);
    }
  }
  // Whoever is told that they are free may press one of them.
  if (held_.size() != count) synchronize();
}

void KeyGrabs::synchronize() {
  const auto answer =
      xcbOwned(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
}

void KeyGrabs::ungrab(const KeyCombination& combination) {
  const std::uint32_t modifiers = combination.modifiers;
  for (const auto root : roots_) {
    xcb_ungrab_key(connection_, combination.key, root, combination.modifiers);
    xcb_input_xi_passive_ungrab_device(connection_, root, combination.key,
                                       XCB_INPUT_DEVICE_ALL_MASTER, 1, XCB_INPUT_GRAB_TYPE_KEYCODE,
                                       &modifiers);
  }
}

}  // namespace valdrix::desktop
