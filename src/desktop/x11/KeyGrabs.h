#pragma once

#include <set>
#include <vector>

#include <xcb/xcb.h>

#include "desktop/x11/MediaKeyMap.h"

namespace valdrix::desktop {

/// The passive key grabs of one connection, on every screen of its server. A press of a grabbed key
/// freezes the keyboard until it has been allowed on.
class KeyGrabs {
 public:
  /// `connection` outlives this.
  explicit KeyGrabs(xcb_connection_t* connection);

  /// Grabs all of `wanted` and waits for the answer. A key of which another client has any part is
  /// left to it whole; those keys are returned. What is already ours is grabbed anew, which puts us
  /// before clients that grabbed it by other means.
  std::set<xcb_keycode_t> grab(const std::set<KeyCombination>& wanted);
  /// Gives up everything that is not in `kept`. Does not wait.
  void releaseAllBut(const std::set<KeyCombination>& kept);
  [[nodiscard]] const std::set<KeyCombination>& held() const { return held_; }

 private:
  void ungrab(const KeyCombination& combination);

  xcb_connection_t* connection_;
  std::vector<xcb_window_t> roots_;
  std::set<KeyCombination> held_;
};

}  // namespace valdrix::desktop
