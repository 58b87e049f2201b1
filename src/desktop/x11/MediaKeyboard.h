#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include <QSocketNotifier>

#include "desktop/x11/KeyGrabs.h"
#include "desktop/x11/MediaKeyMap.h"
#include "desktop/x11/XcbHandles.h"
#include "observation/Lifetime.h"
#include "platform/RunLoop.h"

namespace valdrix::desktop {

/// A press, repeat or release of a media key.
struct MediaKeyEvent {
  std::uint32_t code;
  bool isDown;
  bool isRepeat;
  std::uint32_t modifierFlags;
};

/// Which media keys, by code, are where. Each code is in exactly one list.
struct MediaKeyStatus {
  std::vector<std::uint32_t> held;      ///< ours now
  std::vector<std::uint32_t> missing;   ///< wanted, but another client has them
  std::vector<std::uint32_t> released;  ///< on the keyboard and not wanted
  std::vector<std::uint32_t> absent;    ///< not on the keyboard
};

/// The media keys of an X server, held by passive grabs on a connection of its own, so that no
/// toolkit can come between a frozen keyboard and its release.
///
/// A press freezes the keyboard until it is answered, in the same dispatch and without waiting for
/// the server: it is either swallowed, with its repeats and its release, or handed to the focused
/// window as if it had not been grabbed. While a media key is down the server reports the next key
/// here, too; a typed key is handed on unread, and no other key ever comes this way: the connection
/// selects no key events. With Control, Alt or Super the media keys are not grabbed at all.
///
/// Keys of which another client has a grab are tried again every three seconds while there are any.
/// Main thread only.
class MediaKeyboard {
 public:
  /// Whether an event is swallowed. The answer to a release does not matter: it goes the way of its
  /// press.
  using Decide = std::function<bool(const MediaKeyEvent&)>;

  /// Connects to `display` (empty: what DISPLAY says). Holds no key yet.
  MediaKeyboard(const std::string& display, platform::RunLoop& runLoop, Decide decide);
  MediaKeyboard(const MediaKeyboard&) = delete;
  MediaKeyboard& operator=(const MediaKeyboard&) = delete;

  /// Whether the server is there. Once it is gone, this object does nothing more.
  [[nodiscard]] bool isConnected() const;
  /// Holds exactly the keys with these codes from now on. Waits for the server only for keys that
  /// are not held yet.
  void hold(std::set<std::uint32_t> codes);
  /// Whether holding would give at least one key now, or there is none to hold. Waits for the
  /// server.
  [[nodiscard]] bool canHoldAny();
  [[nodiscard]] MediaKeyStatus status() const;

 private:
  void dispatch();
  void dispatchLater();
  void handle(const xcb_generic_event_t& event);
  void handlePress(const xcb_key_press_event_t& event);
  void handleRelease(const xcb_key_release_event_t& event);
  void handleOtherPress(xcb_keycode_t key);
  void swallow();
  void giveBack();
  void keepKeyboard();
  void scheduleRefresh();
  void refresh();
  void readKeymap();
  void grab(const std::set<KeyCombination>& wanted);

  XcbConnection connection_;
  platform::RunLoop& runLoop_;
  Decide decide_;
  std::uint8_t xkbEventType_ = 0;  ///< 0: no keyboard extension
  MediaKeyMap map_;
  KeyGrabs grabs_;
  std::set<std::uint32_t> codes_;
  std::set<xcb_keycode_t> denied_;
  std::map<xcb_keycode_t, std::uint32_t> down_;  ///< swallowed and not released yet, with its code
  xcb_keycode_t grabbingKey_ = 0;  ///< whose release ends the grab; 0: it does not end by itself
  xcb_keycode_t lastReleased_ = 0;
  xcb_timestamp_t lastReleaseTime_ = 0;
  std::unique_ptr<QSocketNotifier> notifier_;
  Token refreshTimer_;
  Token retryTimer_;
  Lifetime lifetime_;
};

}  // namespace valdrix::desktop
