#include "desktop/x11/KeyGrabs.h"

#include <utility>

#include "desktop/x11/XcbHandles.h"

namespace valdrix::desktop {

KeyGrabs::KeyGrabs(xcb_connection_t* connection) : connection_(connection) {
  if (xcb_connection_has_error(connection)) return;
  auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
  for (; screens.rem; xcb_screen_next(&screens)) roots_.push_back(screens.data->root);
}

std::set<xcb_keycode_t> KeyGrabs::grab(const std::set<KeyCombination>& wanted) {
  std::vector<std::pair<xcb_keycode_t, xcb_void_cookie_t>> requests;
  for (const auto& combination : wanted) {
    for (const auto root : roots_) {
      requests.emplace_back(
          combination.key,
          xcb_grab_key_checked(connection_, 0, root, combination.modifiers, combination.key,
                               XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_SYNC));
    }
  }
  std::set<xcb_keycode_t> denied;
  for (const auto& [key, cookie] : requests) {
    if (xcbOwned(xcb_request_check(connection_, cookie))) denied.insert(key);
  }
  for (const auto& combination : wanted) {
    if (denied.contains(combination.key)) {
      ungrab(combination);
      held_.erase(combination);
    } else {
      held_.insert(combination);
    }
  }
  xcb_flush(connection_);
  return denied;
}

void KeyGrabs::releaseAllBut(const std::set<KeyCombination>& kept) {
  for (auto combination = held_.begin(); combination != held_.end();) {
    if (kept.contains(*combination)) {
      ++combination;
    } else {
      ungrab(*combination);
      combination = held_.erase(combination);
    }
  }
  xcb_flush(connection_);
}

void KeyGrabs::ungrab(const KeyCombination& combination) {
  for (const auto root : roots_) {
    xcb_ungrab_key(connection_, combination.key, root, combination.modifiers);
  }
}

}  // namespace valdrix::desktop
