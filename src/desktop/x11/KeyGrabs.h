#pragma once

#include <set>
#include <vector>

#include <xcb/xcb.h>

#include "desktop/x11/MediaKeyMap.h"

namespace valdrix::desktop {

/// The passive key grabs of one connection, on every screen of its server. They are asynchronous: a
/// press never freezes the keyboard, whatever this process is doing.
///
/// A grab of the core protocol and one of XInput 2 do not exclude each other: two programs can have
/// the same key in the two ways, and the later one gets it. So a key counts as ours only when it is
/// grabbed in both, and nobody else can grab it after that. The XInput one is made last, which is
/// why presses arrive as its events; they say whether they repeat.
class KeyGrabs {
 public:
  /// `connection` outlives this and has been asked for XInput 2.
  explicit KeyGrabs(xcb_connection_t* connection);

  /// Grabs all of `wanted` and waits for the answer. A key of which another client has any part is
  /// left to it whole; those keys are returned.
  std::set<xcb_keycode_t> grab(const std::set<KeyCombination>& wanted);
  /// The keys that `grab` would return, by one question.
  [[nodiscard]] std::set<xcb_keycode_t> probe(const std::set<KeyCombination>& wanted);
  /// Gives up everything that is not in `kept`; waits for the server only when that is something.
  void releaseAllBut(const std::set<KeyCombination>& kept);
  [[nodiscard]] const std::set<KeyCombination>& held() const { return held_; }

 private:
  void synchronize();
  void ungrab(const KeyCombination& combination);

  xcb_connection_t* connection_;
  std::vector<xcb_window_t> roots_;
  std::set<KeyCombination> held_;
};

}  // namespace valdrix::desktop
