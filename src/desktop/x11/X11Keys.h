#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include <QSocketNotifier>
#include <xcb/xinput.h>

#include "desktop/keys/KeySource.h"
#include "desktop/x11/KeyGrabs.h"
#include "desktop/x11/MediaKeyMap.h"
#include "desktop/x11/XcbHandles.h"
#include "observation/Lifetime.h"
#include "platform/RunLoop.h"

namespace valdrix::desktop {

/// The media keys of an X server, with or without Shift and under any lock, held by passive grabs
/// on a connection of its own.
///
/// A press begins a grab of the whole keyboard, which is ended at once: whatever is typed while a
/// media key is down goes where it would go without us, and so does the release of the media key
/// itself. A key that is struck in the instant before the server has ended the grab comes here
/// instead, and is dropped. With Control, Alt or Super the media keys are not grabbed at all.
///
/// Nobody tells when a key that another program has becomes free, so such keys are looked at every
/// three seconds while there are any, which costs one question. Under XWayland grabs are granted
/// and nothing arrives: there it offers nothing. Main thread only.
class X11Keys final : public KeySource {
 public:
  /// Whether a key may be taken before anybody else has it; when the answer changes, whoever made
  /// the source asks `offers` again.
  using MayTake = std::function<bool(platform::MediaKey)>;

  /// Connects to `display` (empty: what DISPLAY says). `runLoop` outlives it.
  X11Keys(const std::string& display, platform::RunLoop& runLoop, MayTake mayTake, Events events);
  X11Keys(const X11Keys&) = delete;
  X11Keys& operator=(const X11Keys&) = delete;

  [[nodiscard]] std::string name() const override { return "x11-grabs"; }
  [[nodiscard]] bool offers(platform::MediaKey key) const override {
    return isUsable() && mayTake_(key);
  }
  /// Waits for the server only for keys that are not held yet.
  void hold(const std::set<platform::MediaKey>& keys) override;
  [[nodiscard]] KeyState state(platform::MediaKey key) const override;

 private:
  [[nodiscard]] bool isUsable() const;
  void setUp();
  void dispatch();
  void dispatchLater();
  void handle(const xcb_generic_event_t& event);
  void handlePress(const xcb_input_key_press_event_t& event);
  void handleKeyboardChange(const xcb_generic_event_t& event);
  void scheduleRefresh();
  void refresh();
  void readKeymap();
  [[nodiscard]] std::set<KeyCombination> combinations(
      const std::set<platform::MediaKey>& keys) const;
  void grab(const std::set<KeyCombination>& wanted);
  void lookAgain();

  XcbConnection connection_;
  platform::RunLoop& runLoop_;
  MayTake mayTake_;
  Events events_;
  std::uint8_t xinputOpcode_ = 0;  ///< 0: no keys are to be had here
  std::uint8_t xkbEventType_ = 0;
  MediaKeyMap map_;
  std::uint32_t layout_ = 0;
  KeyGrabs grabs_;
  std::set<platform::MediaKey> keys_;
  std::set<xcb_keycode_t> denied_;
  std::unique_ptr<QSocketNotifier> notifier_;
  Token refreshTimer_;
  Token lookTimer_;
  Lifetime lifetime_;
};

}  // namespace valdrix::desktop
