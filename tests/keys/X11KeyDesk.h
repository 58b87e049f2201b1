#pragma once

#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include <QSize>

#include "desktop/x11/XcbHandles.h"
#include "tests/support/VirtualDisplay.h"

namespace valdrix::tests {

/// X keysym of a media key's port code.
[[nodiscard]] xcb_keysym_t mediaKeysym(std::uint32_t code);
/// What tests call a media key.
[[nodiscard]] std::string mediaKeyName(std::uint32_t code);

/// An X server with a keyboard and one window that has the focus: what a user would be typing into.
class X11KeyDesk {
 public:
  explicit X11KeyDesk(QSize size = {320, 200});

  [[nodiscard]] VirtualDisplay& display() { return *display_; }
  /// Key events by keycode, for keys whose symbol is ambiguous.
  void pressCode(xcb_keycode_t key) { fake(XCB_KEY_PRESS, key); }
  void releaseCode(xcb_keycode_t key) { fake(XCB_KEY_RELEASE, key); }
  void tapCode(xcb_keycode_t key) { pressCode(key), releaseCode(key); }
  void press(std::uint32_t code) { display_->pressKey(mediaKeysym(code)); }
  void release(std::uint32_t code) { display_->releaseKey(mediaKeysym(code)); }
  void tap(std::uint32_t code) { press(code), release(code); }
  [[nodiscard]] xcb_keycode_t keycodeOf(xcb_keysym_t keysym) const;

  /// Waits for `condition` with the event loop and `pump` running.
  [[nodiscard]] bool await(const std::function<bool()>& condition);
  /// Called at each turn of `await`.
  void setPump(std::function<void()> pump) { pump_ = std::move(pump); }

  /// Types a letter, waits until the window has it, and returns the media keys that it got since
  /// the last call: "volumeUp down", "volumeUp up", …; anything else by its keycode, modifiers left
  /// out, and so is a release without its press, which programs pay no heed to. The keyboard keeps
  /// its order, so all earlier keys have been dealt with.
  [[nodiscard]] std::vector<std::string> windowGot();
  /// Waits until nobody has a grab of the keyboard.
  [[nodiscard]] bool awaitFreeKeyboard();
  /// Whether a letter that is typed now reaches the window while this process does nothing else.
  [[nodiscard]] bool typesWhileWeSleep();
  /// Changes the keymap by a program and waits until the server has it.
  [[nodiscard]] bool changeKeymap(std::vector<std::string> arguments);
  /// Switches the keyboard to its layout `group` (from 0).
  void lockGroup(std::uint8_t group);
  /// Lets the server die.
  void stop() { client_.reset(), display_.reset(); }

 private:
  void fake(std::uint8_t type, xcb_keycode_t key);
  void read();

  std::unique_ptr<VirtualDisplay> display_;
  desktop::XcbConnection client_;
  xcb_window_t window_ = XCB_WINDOW_NONE;
  std::vector<std::string> got_;
  std::set<xcb_keycode_t> down_;
  std::size_t letters_ = 0;
  std::function<void()> pump_;
};

/// Another program that grabs keys, with every modifier.
class OtherGrabber {
 public:
  explicit OtherGrabber(X11KeyDesk& desk);
  /// Whether it got them, by the core protocol or by XInput 2.
  bool grab(std::uint32_t code);
  bool grabByXInput(std::uint32_t code);
  void ungrabAll();

 private:
  X11KeyDesk& desk_;
  desktop::XcbConnection client_;
  xcb_window_t root_;
};

}  // namespace valdrix::tests
