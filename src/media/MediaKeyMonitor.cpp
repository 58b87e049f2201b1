#include "media/MediaKeyMonitor.h"

#include <utility>

#include "preferences/PreferenceKeys.h"

namespace valdrix {

using platform::InputEvent;
using platform::TapResult;

namespace {

constexpr std::uint32_t passingModifiers = platform::modifierFlag::control |
                                           platform::modifierFlag::option |
                                           platform::modifierFlag::command;

/// The fields of an auxiliary control event, from the low 32 bits of its data.
struct KeyData {
  std::uint32_t keyCode;
  std::uint32_t keyState;
  bool isRepeat;
};

KeyData decode(std::int64_t data1) {
  const auto data = static_cast<std::uint32_t>(data1);
  return {data >> 16, data >> 8 & 0xFF, (data & 1) != 0};
}

}  // namespace

MediaKeyMonitor::MediaKeyMonitor(platform::RunLoop& runLoop, platform::Accessibility& accessibility,
                                 platform::EventTaps& eventTaps,
                                 const platform::UserDefaults& userDefaults)
    : runLoop_(runLoop),
      accessibility_(accessibility),
      eventTaps_(eventTaps),
      userDefaults_(userDefaults) {}

MediaKeyMonitor::~MediaKeyMonitor() {
  stop();
  permissionRetryTimer_.reset();
}

void MediaKeyMonitor::setDelegate(std::weak_ptr<MediaKeyMonitorDelegate> delegate) {
  delegate_ = std::move(delegate);
}

bool MediaKeyMonitor::start() {
  if (!accessibility_.isProcessTrusted()) return false;
  if (tap_) return true;
  auto tap = eventTaps_.createTap(
      platform::TapLocation::hid, platform::TapPlacement::headInsert,
      platform::TapOptions::activeFilter, 1U << platform::systemDefined::eventType,
      {.handleEvent = lifetime_.weak([this](std::uint32_t type, const InputEvent* event) {
         return handleTapEvent(type, event);
       }),
       .wouldSwallow =
           lifetime_.weak([this](std::uint32_t keyCode) { return isIntercepted(keyCode, 0); })});
  if (!tap) return false;
  runLoopSource_ = tap->addToMainRunLoop();
  tap->enable(true);
  tap_ = std::move(tap);
  permissionRetryTimer_.reset();
  return true;
}

void MediaKeyMonitor::startPermissionRetry() {
  permissionRetryTimer_.reset();
  permissionRetryTimer_ =
      runLoop_.scheduleTimer(permissionRetryInterval, true, lifetime_.weak([this] {
        if (start()) permissionRetryTimer_.reset();
      }));
}

void MediaKeyMonitor::stop() {
  if (tap_) tap_->enable(false);
  runLoopSource_.reset();
  tap_.reset();
}

bool MediaKeyMonitor::isIntercepted(std::uint32_t keyCode, std::uint32_t modifierFlags) const {
  const auto key = platform::mediaKeyWithCode(keyCode);
  if (!key || (modifierFlags & passingModifiers) != 0) return false;
  if (!platform::isBrightnessKey(*key))
    return userDefaults_.boolForKey(preferenceKeys::volumeHUDEnabled);
  const auto delegate = delegate_.lock();
  return delegate && delegate->canHandleBrightnessKeys() &&
         userDefaults_.boolForKey(preferenceKeys::brightnessHUDEnabled);
}

TapResult MediaKeyMonitor::handleTapEvent(std::uint32_t type, const InputEvent* event) {
  if (type == platform::tapDisabledByTimeout || type == platform::tapDisabledByUserInput) {
    if (tap_) tap_->enable(true);
    return TapResult::pass;
  }
  if (type != platform::systemDefined::eventType || !event ||
      event->subtype != platform::systemDefined::auxiliaryControlButtons)
    return TapResult::pass;
  const KeyData data = decode(event->data1);
  if (!isIntercepted(data.keyCode, event->modifierFlags)) return TapResult::pass;
  if (data.keyState == platform::systemDefined::keyDown || data.isRepeat) {
    const KeyAction action{
        .key = *platform::mediaKeyWithCode(data.keyCode),
        .isFine = (event->modifierFlags & platform::modifierFlag::shift) != 0,
        .isRepeat = data.isRepeat,
    };
    runLoop_.async(lifetime_.weak([this, action] { performKeyAction(action); }));
  }
  return TapResult::swallow;
}

void MediaKeyMonitor::performKeyAction(const KeyAction& action) {
  const auto delegate = delegate_.lock();
  if (!delegate) return;
  const float change = action.isFine ? fineStep : step;
  switch (action.key) {
    case platform::MediaKey::volumeUp:
      return delegate->mediaKeyVolumeUp(change);
    case platform::MediaKey::volumeDown:
      return delegate->mediaKeyVolumeDown(change);
    case platform::MediaKey::brightnessUp:
      return delegate->mediaKeyBrightnessUp(change);
    case platform::MediaKey::brightnessDown:
      return delegate->mediaKeyBrightnessDown(change);
    case platform::MediaKey::mute:
      // A held key toggles once.
      if (!action.isRepeat) delegate->mediaKeyMute();
      return;
  }
}

}  // namespace valdrix
