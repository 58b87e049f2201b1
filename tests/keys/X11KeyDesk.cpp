#include "tests/keys/X11KeyDesk.h"

#include <algorithm>
#include <map>
#include <poll.h>
#include <utility>
// xcb's header has a field of this name.
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit
#include <xkbcommon/xkbcommon-keysyms.h>

#include <QCoreApplication>
#include <xcb/xcb_keysyms.h>
#include <xcb/xinput.h>
#include <xcb/xtest.h>

#include "tests/support/WaitFor.h"

namespace valdrix::tests {

namespace {

using desktop::xcbOwned;

struct MediaKey {
  const char* name;
  xcb_keysym_t keysym;
  xcb_keycode_t keycode;  ///< on the virtual server
};
const std::map<std::uint32_t, MediaKey> mediaKeys = {
    {0, {"volumeUp", XKB_KEY_XF86AudioRaiseVolume, 123}},
    {1, {"volumeDown", XKB_KEY_XF86AudioLowerVolume, 122}},
    {2, {"brightnessUp", XKB_KEY_XF86MonBrightnessUp, 233}},
    {3, {"brightnessDown", XKB_KEY_XF86MonBrightnessDown, 232}},
    {7, {"mute", XKB_KEY_XF86AudioMute, 121}},
};
constexpr xcb_keycode_t letterKey = 38;  // A on every PC keyboard
// Where evdev and the virtual server put Shift, Control, Alt, Super, Caps Lock and the like.
const std::vector<xcb_keycode_t> quietKeys = {50, 62, 37, 105, 64, 108, 133, 134, 66, 77, 78};

std::string nameOf(xcb_keycode_t keycode) {
  for (const auto& [code, key] : mediaKeys)
    if (key.keycode == keycode) return key.name;
  return std::to_string(keycode);
}

/// Waits until the server has handled what was sent.
void synchronize(xcb_connection_t* connection) {
  const auto done =
      xcbOwned(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
}

}  // namespace

xcb_keysym_t mediaKeysym(std::uint32_t code) { return mediaKeys.at(code).keysym; }
std::string mediaKeyName(std::uint32_t code) { return mediaKeys.at(code).name; }

X11KeyDesk::X11KeyDesk(QSize size)
    : display_(std::make_unique<VirtualDisplay>(size)),
      client_(xcb_connect(display_->name().c_str(), nullptr)),
      window_(xcb_generate_id(client_.get())) {
  const std::uint32_t events =
      XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
  xcb_create_window(client_.get(), XCB_COPY_FROM_PARENT, window_, display_->root(), 0, 0, 50, 50, 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK,
                    &events);
  xcb_map_window(client_.get(), window_);
  synchronize(client_.get());
  xcb_set_input_focus(client_.get(), XCB_INPUT_FOCUS_POINTER_ROOT, window_, XCB_CURRENT_TIME);
  synchronize(client_.get());
  // The first key of another keyboard than the last one changes the keymap.
  static_cast<void>(windowGot());
}

void X11KeyDesk::fake(std::uint8_t type, xcb_keycode_t key) {
  xcb_test_fake_input(display_->connection(), type, key, XCB_CURRENT_TIME, display_->root(), 0, 0,
                      0);
  synchronize(display_->connection());
}

xcb_keycode_t X11KeyDesk::keycodeOf(xcb_keysym_t keysym) const {
  auto* symbols = xcb_key_symbols_alloc(display_->connection());
  const auto keys = xcbOwned(xcb_key_symbols_get_keycode(symbols, keysym));
  xcb_key_symbols_free(symbols);
  return keys ? *keys : xcb_keycode_t{0};
}

bool X11KeyDesk::await(const std::function<bool()>& condition) {
  return waitFor([&] {
    if (pump_) pump_();
    return condition();
  });
}

void X11KeyDesk::read() {
  while (const auto event = xcbOwned(xcb_poll_for_event(client_.get()))) {
    const auto type = event->response_type & 0x7F;
    if (type != XCB_KEY_PRESS && type != XCB_KEY_RELEASE) continue;
    const auto key = reinterpret_cast<const xcb_key_press_event_t&>(*event).detail;
    if (key == letterKey) {
      letters_ += type == XCB_KEY_RELEASE ? 1 : 0;
    } else if (std::find(quietKeys.begin(), quietKeys.end(), key) == quietKeys.end()) {
      const bool isDown = type == XCB_KEY_PRESS;
      if (isDown ? down_.insert(key).second : down_.erase(key) > 0)
        got_.push_back(nameOf(key) + (isDown ? " down" : " up"));
    }
  }
}

std::vector<std::string> X11KeyDesk::windowGot() {
  const auto before = letters_;
  tapCode(letterKey);
  const bool hasLetter = await([&] {
    read();
    return letters_ > before;
  });
  if (!hasLetter) return {"the keyboard is stuck"};
  // What the server sent to other clients before the letter is there, but may not be read yet.
  QCoreApplication::processEvents();
  if (pump_) pump_();
  return std::exchange(got_, {});
}

bool X11KeyDesk::awaitFreeKeyboard() {
  auto* connection = display_->connection();
  return await([&] {
    const auto grab = xcbOwned(
        xcb_grab_keyboard_reply(connection,
                                xcb_grab_keyboard(connection, 0, display_->root(), XCB_CURRENT_TIME,
                                                  XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
                                nullptr));
    xcb_ungrab_keyboard(connection, XCB_CURRENT_TIME);
    synchronize(connection);
    return grab && grab->status == XCB_GRAB_STATUS_SUCCESS;
  });
}

bool X11KeyDesk::typesWhileWeSleep() {
  const auto before = letters_;
  tapCode(letterKey);
  constexpr int patience = 5000;
  pollfd readable{xcb_get_file_descriptor(client_.get()), POLLIN, 0};
  for (read(); letters_ == before && poll(&readable, 1, patience) > 0;) read();
  return letters_ > before;
}

bool X11KeyDesk::changeKeymap(std::vector<std::string> arguments) {
  return display_->run(std::move(arguments)) == 0;
}

void X11KeyDesk::lockGroup(std::uint8_t group) {
  auto* connection = display_->connection();
  const auto use = xcbOwned(
      xcb_xkb_use_extension_reply(connection, xcb_xkb_use_extension(connection, 1, 0), nullptr));
  xcb_xkb_latch_lock_state(connection, XCB_XKB_ID_USE_CORE_KBD, 0, 0, 1, group, 0, 0, 0);
  synchronize(connection);
}

OtherGrabber::OtherGrabber(X11KeyDesk& desk)
    : desk_(desk),
      client_(xcb_connect(desk.display().name().c_str(), nullptr)),
      root_(desk.display().root()) {}

bool OtherGrabber::grab(std::uint32_t code) {
  const auto cookie = xcb_grab_key_checked(client_.get(), 0, root_, XCB_MOD_MASK_ANY,
                                           desk_.keycodeOf(mediaKeysym(code)), XCB_GRAB_MODE_ASYNC,
                                           XCB_GRAB_MODE_ASYNC);
  return !xcbOwned(xcb_request_check(client_.get(), cookie));
}

bool OtherGrabber::grabByXInput(std::uint32_t code) {
  const auto version = xcbOwned(xcb_input_xi_query_version_reply(
      client_.get(), xcb_input_xi_query_version(client_.get(), 2, 2), nullptr));
  const std::uint32_t events = XCB_INPUT_XI_EVENT_MASK_KEY_PRESS;
  const std::uint32_t modifiers = XCB_INPUT_MODIFIER_MASK_ANY;
  const auto reply = xcbOwned(xcb_input_xi_passive_grab_device_reply(
      client_.get(),
      xcb_input_xi_passive_grab_device(
          client_.get(), XCB_CURRENT_TIME, root_, XCB_CURSOR_NONE,
          desk_.keycodeOf(mediaKeysym(code)), XCB_INPUT_DEVICE_ALL_MASTER, 1, 1,
          XCB_INPUT_GRAB_TYPE_KEYCODE, XCB_INPUT_GRAB_MODE_22_ASYNC, XCB_INPUT_GRAB_MODE_22_ASYNC,
          XCB_INPUT_GRAB_OWNER_NO_OWNER, &events, &modifiers),
      nullptr));
  return version && reply && reply->num_modifiers == 0;
}

void OtherGrabber::ungrabAll() {
  const std::uint32_t modifiers = XCB_INPUT_MODIFIER_MASK_ANY;
  for (const auto& [code, key] : mediaKeys)
    xcb_input_xi_passive_ungrab_device(client_.get(), root_, key.keycode,
                                       XCB_INPUT_DEVICE_ALL_MASTER, 1, XCB_INPUT_GRAB_TYPE_KEYCODE,
                                       &modifiers);
  xcb_ungrab_key(client_.get(), XCB_GRAB_ANY, root_, XCB_MOD_MASK_ANY);
  synchronize(client_.get());
}

}  // namespace valdrix::tests
