#include "desktop/x11/MediaKeyboard.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "desktop/x11/XkbSetup.h"

namespace valdrix::desktop {

namespace {

constexpr double retryInterval = 3;
// Changing a keymap comes as a burst of notices, one a key with some programs.
constexpr double refreshDelay = 0.05;

const std::set<std::uint32_t> allCodes(std::begin(mediaKeyCodes), std::end(mediaKeyCodes));

bool isAnyKeyOutside(const std::set<KeyCombination>& combinations,
                     const std::set<xcb_keycode_t>& keys) {
  return std::any_of(combinations.begin(), combinations.end(),
                     [&](const auto& combination) { return !keys.contains(combination.key); });
}

}  // namespace

MediaKeyboard::MediaKeyboard(const std::string& display, platform::RunLoop& runLoop, Decide decide)
    : connection_(xcb_connect(display.empty() ? nullptr : display.c_str(), nullptr)),
      runLoop_(runLoop),
      decide_(std::move(decide)),
      grabs_(connection_.get()) {
  if (!isConnected()) return;
  if (const auto xkb = setUpXkb(connection_.get())) xkbEventType_ = *xkb;
  readKeymap();
  notifier_ = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(connection_.get()),
                                                QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(),
                   [this] { dispatch(); });
  dispatchLater();
}

bool MediaKeyboard::isConnected() const { return !xcb_connection_has_error(connection_.get()); }

void MediaKeyboard::dispatch() {
  while (const auto event = xcbOwned(xcb_poll_for_event(connection_.get()))) handle(*event);
  if (isConnected()) return;
  notifier_->setEnabled(false);
  retryTimer_.reset();
  refreshTimer_.reset();
}

/// Events that arrive while a reply is awaited wait in xcb's own queue, and the socket stays silent
/// about them.
void MediaKeyboard::dispatchLater() {
  runLoop_.async(lifetime_.weak([this] { dispatch(); }));
}

void MediaKeyboard::handle(const xcb_generic_event_t& event) {
  const auto type = static_cast<std::uint8_t>(event.response_type & 0x7F);
  if (type == XCB_KEY_PRESS) {
    handlePress(reinterpret_cast<const xcb_key_press_event_t&>(event));
  } else if (type == XCB_KEY_RELEASE) {
    handleRelease(reinterpret_cast<const xcb_key_release_event_t&>(event));
  } else if (type == XCB_MAPPING_NOTIFY || (xkbEventType_ != 0 && type == xkbEventType_)) {
    scheduleRefresh();
  }
}

void MediaKeyboard::handlePress(const xcb_key_press_event_t& event) {
  const auto known = down_.find(event.detail);
  // A key stays what it was when it went down, whatever becomes of the keymap.
  const auto code =
      known == down_.end() ? map_.code(event.detail, event.state) : std::optional(known->second);
  if (!code) return handleOtherPress(event.detail);
  // Without the keyboard extension each repeat is a release and a press at the same instant.
  const bool isRepeat =
      known != down_.end() ||
      (xkbEventType_ == 0 && event.detail == lastReleased_ && event.time == lastReleaseTime_);
  if (!decide_({*code, true, isRepeat, map_.modifiers().flags(event.state)})) return giveBack();
  if (down_.empty()) {
    grabbingKey_ = event.detail;
  } else if (known == down_.end()) {
    keepKeyboard();
  }
  down_[event.detail] = *code;
  swallow();
}

/// A key typed while a media key is down must not be lost. A modifier may be: the focused window
/// learns of it with the next key, and handing it on would end the grab under the media key.
void MediaKeyboard::handleOtherPress(xcb_keycode_t key) {
  const bool isModifier = map_.modifiers().keys.contains(key);
  if (isModifier && !down_.empty()) return swallow();
  giveBack();
}

void MediaKeyboard::handleRelease(const xcb_key_release_event_t& event) {
  const auto released = down_.extract(event.detail);
  if (!released) return swallow();
  lastReleased_ = event.detail;
  lastReleaseTime_ = event.time;
  if (!down_.empty()) {
    swallow();
  } else if (grabbingKey_ == 0) {
    xcb_ungrab_keyboard(connection_.get(), XCB_CURRENT_TIME);
    xcb_flush(connection_.get());
  }
  decide_({released.mapped(), false, false, map_.modifiers().flags(event.state)});
}

/// Lets the keyboard go on until its next event, which comes here again while the grab lasts.
void MediaKeyboard::swallow() {
  xcb_allow_events(connection_.get(), XCB_ALLOW_SYNC_KEYBOARD, XCB_CURRENT_TIME);
  xcb_flush(connection_.get());
}

/// Hands the event to the focused window and ends the grab.
void MediaKeyboard::giveBack() {
  down_.clear();
  xcb_allow_events(connection_.get(), XCB_ALLOW_REPLAY_KEYBOARD, XCB_CURRENT_TIME);
  xcb_flush(connection_.get());
}

/// A passive grab ends when the key that began it is released. With a second media key down, the
/// release of that one would reach the focused window without its press; so the keyboard is taken,
/// while it is frozen, until both are up.
void MediaKeyboard::keepKeyboard() {
  grabbingKey_ = 0;
  const auto root = xcb_setup_roots_iterator(xcb_get_setup(connection_.get())).data->root;
  const auto cookie = xcb_grab_keyboard(connection_.get(), 0, root, XCB_CURRENT_TIME,
                                        XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_SYNC);
  xcb_discard_reply(connection_.get(), cookie.sequence);
}

void MediaKeyboard::scheduleRefresh() {
  if (refreshTimer_) return;
  refreshTimer_ = runLoop_.scheduleTimer(refreshDelay, false, [this] { refresh(); });
}

void MediaKeyboard::refresh() {
  refreshTimer_.reset();
  readKeymap();
  const auto wanted = map_.combinations(codes_);
  grabs_.releaseAllBut(wanted);
  grab(wanted);
}

void MediaKeyboard::readKeymap() {
  auto keymap = xkbEventType_ != 0 ? readXkbKeymap(connection_.get()) : nullptr;
  if (!keymap) keymap = readCoreKeymap(connection_.get());
  if (keymap) map_ = MediaKeyMap(*keymap, readKeyModifiers(connection_.get(), *keymap));
}

void MediaKeyboard::grab(const std::set<KeyCombination>& wanted) {
  denied_ = grabs_.grab(wanted);
  if (denied_.empty()) {
    retryTimer_.reset();
  } else if (!retryTimer_) {
    retryTimer_ = runLoop_.scheduleTimer(retryInterval, true, [this] { hold(codes_); });
  }
  dispatchLater();
}

void MediaKeyboard::hold(std::set<std::uint32_t> codes) {
  codes_ = std::move(codes);
  const auto wanted = map_.combinations(codes_);
  grabs_.releaseAllBut(wanted);
  std::set<KeyCombination> more;
  std::set_difference(wanted.begin(), wanted.end(), grabs_.held().begin(), grabs_.held().end(),
                      std::inserter(more, more.end()));
  grab(more);
}

bool MediaKeyboard::canHoldAny() {
  const auto all = map_.combinations(allCodes);
  const auto denied = grabs_.grab(all);
  grabs_.releaseAllBut(map_.combinations(codes_));
  dispatchLater();
  return isConnected() && (all.empty() || isAnyKeyOutside(all, denied));
}

MediaKeyStatus MediaKeyboard::status() const {
  MediaKeyStatus status;
  for (const auto code : mediaKeyCodes) {
    const auto combinations = map_.combinations({code});
    const auto isDenied = [this](const auto& combination) {
      return denied_.contains(combination.key);
    };
    if (combinations.empty()) {
      status.absent.push_back(code);
    } else if (!codes_.contains(code)) {
      status.released.push_back(code);
    } else if (std::any_of(combinations.begin(), combinations.end(), isDenied)) {
      status.missing.push_back(code);
    } else {
      status.held.push_back(code);
    }
  }
  return status;
}

}  // namespace valdrix::desktop
