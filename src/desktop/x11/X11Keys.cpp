#include "desktop/x11/X11Keys.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <string_view>
#include <utility>

#include "desktop/x11/XkbSetup.h"

namespace valdrix::desktop {

using platform::MediaKey;

namespace {

constexpr double lookInterval = 3;
// Changing a keymap comes as a burst of notices, one a key with some programs.
constexpr double refreshDelay = 0.05;

bool isXWayland(xcb_connection_t* connection) {
  constexpr std::string_view name = "XWAYLAND";
  const auto answer = xcbOwned(xcb_query_extension_reply(
      connection,
      xcb_query_extension(connection, static_cast<std::uint16_t>(name.size()), name.data()),
      nullptr));
  return answer && answer->present;
}

/// The major opcode of XInput 2, or 0.
std::uint8_t setUpXInput(xcb_connection_t* connection) {
  const auto* extension = xcb_get_extension_data(connection, &xcb_input_id);
  if (!extension || !extension->present) return 0;
  const auto version = xcbOwned(xcb_input_xi_query_version_reply(
      connection, xcb_input_xi_query_version(connection, 2, 2), nullptr));
  return version && version->major_version >= 2 ? extension->major_opcode : std::uint8_t{0};
}

/// The state of a core event: the modifiers, and the layout in bits 13 and 14.
std::uint16_t coreState(const xcb_input_key_press_event_t& event) {
  return static_cast<std::uint16_t>(event.mods.effective | event.group.effective << 13);
}

}  // namespace

X11Keys::X11Keys(const std::string& display, platform::RunLoop& runLoop, MayTake mayTake,
                 Events events)
    : connection_(xcb_connect(display.empty() ? nullptr : display.c_str(), nullptr)),
      runLoop_(runLoop),
      mayTake_(std::move(mayTake)),
      events_(std::move(events)),
      grabs_(connection_.get()) {
  if (!xcb_connection_has_error(connection_.get())) setUp();
}

void X11Keys::setUp() {
  if (isXWayland(connection_.get())) return;
  const auto xkb = setUpXkb(connection_.get());
  if (!xkb) return;
  xkbEventType_ = *xkb;
  xinputOpcode_ = setUpXInput(connection_.get());
  readKeymap();
  notifier_ = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(connection_.get()),
                                                QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(),
                   [this] { dispatch(); });
  dispatchLater();
}

bool X11Keys::isUsable() const {
  return xinputOpcode_ != 0 && !xcb_connection_has_error(connection_.get());
}

void X11Keys::dispatch() {
  while (const auto event = xcbOwned(xcb_poll_for_event(connection_.get()))) handle(*event);
  if (isUsable()) return;
  notifier_->setEnabled(false);
  lookTimer_.reset();
  refreshTimer_.reset();
}

/// Events that arrive while a reply is awaited wait in xcb's own queue, and the socket stays silent
/// about them.
void X11Keys::dispatchLater() {
  runLoop_.async(lifetime_.weak([this] { dispatch(); }));
}

void X11Keys::handle(const xcb_generic_event_t& event) {
  const auto type = static_cast<std::uint8_t>(event.response_type & 0x7F);
  if (type == XCB_GE_GENERIC) {
    const auto& press = reinterpret_cast<const xcb_input_key_press_event_t&>(event);
    if (press.extension == xinputOpcode_ && press.event_type == XCB_INPUT_KEY_PRESS)
      handlePress(press);
  } else if (type == xkbEventType_) {
    handleKeyboardChange(event);
  } else if (type == XCB_MAPPING_NOTIFY) {
    scheduleRefresh();
  }
}

void X11Keys::handleKeyboardChange(const xcb_generic_event_t& event) {
  const auto layout = layoutIn(event);
  if (!layout) return scheduleRefresh();
  if (std::exchange(layout_, *layout) != *layout) hold(keys_);
}

void X11Keys::handlePress(const xcb_input_key_press_event_t& event) {
  xcb_input_xi_ungrab_device(connection_.get(), XCB_CURRENT_TIME, event.deviceid);
  xcb_flush(connection_.get());
  const auto state = coreState(event);
  const auto key = map_.key(static_cast<xcb_keycode_t>(event.detail), state);
  if (!key || !keys_.contains(*key)) return;
  const bool isRepeat = (event.flags & XCB_INPUT_KEY_EVENT_FLAGS_KEY_REPEAT) != 0;
  events_.pressed({*key, true, isRepeat, map_.modifiers().flags(state)});
}

void X11Keys::scheduleRefresh() {
  if (refreshTimer_) return;
  refreshTimer_ = runLoop_.scheduleTimer(refreshDelay, false, [this] { refresh(); });
}

void X11Keys::refresh() {
  refreshTimer_.reset();
  readKeymap();
  const auto wanted = combinations(keys_);
  grabs_.releaseAllBut(wanted);
  grab(wanted);
  events_.changed();
}

void X11Keys::readKeymap() {
  if (const auto keymap = readXkbKeymap(connection_.get()))
    map_ = MediaKeyMap(*keymap, readKeyModifiers(connection_.get(), *keymap));
  layout_ = readLayout(connection_.get());
}

std::set<KeyCombination> X11Keys::combinations(const std::set<MediaKey>& keys) const {
  return map_.combinations(keys, layout_);
}

void X11Keys::grab(const std::set<KeyCombination>& wanted) {
  denied_ = grabs_.grab(wanted);
  if (denied_.empty()) {
    lookTimer_.reset();
  } else if (!lookTimer_) {
    lookTimer_ = runLoop_.scheduleTimer(lookInterval, true, [this] { lookAgain(); });
  }
  dispatchLater();
}

/// One combination tells of a key whether it has become free.
void X11Keys::lookAgain() {
  std::map<xcb_keycode_t, KeyCombination> samples;
  for (const auto& combination : combinations(keys_))
    if (denied_.contains(combination.key)) samples.emplace(combination.key, combination);
  std::set<KeyCombination> wanted;
  for (const auto& [key, combination] : samples) wanted.insert(combination);
  const auto stillDenied = grabs_.probe(wanted);
  dispatchLater();
  if (stillDenied == denied_) return;
  hold(keys_);
  events_.changed();
}

void X11Keys::hold(const std::set<MediaKey>& keys) {
  keys_ = keys;
  if (!isUsable()) return;
  const auto wanted = combinations(keys_);
  grabs_.releaseAllBut(wanted);
  std::set<KeyCombination> more;
  std::set_difference(wanted.begin(), wanted.end(), grabs_.held().begin(), grabs_.held().end(),
                      std::inserter(more, more.end()));
  if (!more.empty() || !denied_.empty()) grab(more);
}

KeyState X11Keys::state(MediaKey key) const {
  if (!isUsable()) return KeyState::withheld;
  const auto all = combinations({key});
  if (all.empty()) return KeyState::absent;
  if (!keys_.contains(key)) return KeyState::released;
  return std::ranges::any_of(all, [this](const auto& one) { return denied_.contains(one.key); })
             ? KeyState::taken
             : KeyState::held;
}

}  // namespace valdrix::desktop
