#include "sim/SimEventTaps.h"

#include <algorithm>
#include <utility>

#include "observation/Lifetime.h"

namespace valdrix::sim {

using platform::InputEvent;
using platform::TapCallbacks;
using platform::TapResult;

namespace {

std::string keyName(std::uint32_t code) {
  switch (code) {
    case 0:
      return "volumeUp";
    case 1:
      return "volumeDown";
    case 2:
      return "brightnessUp";
    case 3:
      return "brightnessDown";
    case 7:
      return "mute";
    default:
      return "key " + std::to_string(code);
  }
}

std::string modifierNames(std::uint32_t flags) {
  namespace flag = platform::modifierFlag;
  std::string names;
  if (flags & flag::control) names += "control+";
  if (flags & flag::option) names += "option+";
  if (flags & flag::command) names += "command+";
  if (flags & flag::shift) names += "shift+";
  return names;
}

std::string describe(std::uint32_t type, const InputEvent* event) {
  namespace sd = platform::systemDefined;
  if (type != sd::eventType) return "event of type " + std::to_string(type);
  if (!event) return "unreadable event";
  if (event->subtype != sd::auxiliaryControlButtons) {
    return "event of subtype " + std::to_string(event->subtype);
  }
  const auto data = static_cast<std::uint32_t>(event->data1);
  const bool isDown = (data >> 8 & 0xFF) == sd::keyDown;
  return modifierNames(event->modifierFlags) + keyName(data >> 16) +
         (!isDown       ? " up"
          : (data & 1U) ? " repeat"
                        : " down");
}

InputEvent keyEvent(std::uint32_t code, std::uint32_t state, bool isRepeat, std::uint32_t flags) {
  return {platform::systemDefined::auxiliaryControlButtons,
          static_cast<std::int64_t>(code << 16 | state << 8 | (isRepeat ? 1U : 0U)), flags};
}

}  // namespace

class SimEventTaps::Tap final : public platform::EventTap {
 public:
  Tap(SimEventTaps& owner, std::uint32_t mask, TapCallbacks callbacks)
      : owner_(owner),
        mask_(mask),
        callbacks_(std::make_shared<const TapCallbacks>(std::move(callbacks))) {
    owner_.taps_.insert(owner_.taps_.begin(), this);
    owner_.trace_.add("tap created");
  }
  ~Tap() override {
    std::erase(owner_.taps_, this);
    owner_.trace_.add("tap destroyed");
  }
  Tap(const Tap&) = delete;
  Tap& operator=(const Tap&) = delete;

  void enable(bool isEnabled) override {
    isEnabled_ = isEnabled;
    owner_.trace_.add(isEnabled ? "tap enabled" : "tap disabled");
  }
  bool isEnabled() const override { return isEnabled_; }
  Token addToMainRunLoop() override {
    ++connections_;
    owner_.trace_.add("tap connected");
    return Token(lifetime_.weak([this] {
      --connections_;
      owner_.trace_.add("tap disconnected");
    }));
  }

  bool isConnected() const { return connections_ > 0; }
  bool sees(std::uint32_t type) const { return type < 32 && (mask_ >> type & 1U); }
  /// Shared, so that a callback may destroy its tap.
  std::shared_ptr<const TapCallbacks> callbacks() const { return callbacks_; }

 private:
  SimEventTaps& owner_;
  std::uint32_t mask_;
  std::shared_ptr<const TapCallbacks> callbacks_;
  bool isEnabled_ = false;
  int connections_ = 0;
  Lifetime lifetime_;
};

SimEventTaps::SimEventTaps(Trace& trace, const SimAccessibility& accessibility)
    : trace_(trace), accessibility_(accessibility) {}

std::unique_ptr<platform::EventTap> SimEventTaps::createTap(platform::TapLocation,
                                                            platform::TapPlacement,
                                                            platform::TapOptions,
                                                            std::uint32_t mask,
                                                            TapCallbacks callbacks) {
  if (creationFails_ || !accessibility_.trust()) {
    trace_.add("tap refused");
    return nullptr;
  }
  return std::make_unique<Tap>(*this, mask, std::move(callbacks));
}

TapResult SimEventTaps::press(std::uint32_t keyCode, std::uint32_t modifierFlags) {
  const bool isRepeat = !down_.insert(keyCode).second;
  const auto event = keyEvent(keyCode, platform::systemDefined::keyDown, isRepeat, modifierFlags);
  return send(platform::systemDefined::eventType, &event);
}

TapResult SimEventTaps::release(std::uint32_t keyCode, std::uint32_t modifierFlags) {
  down_.erase(keyCode);
  const auto event = keyEvent(keyCode, platform::systemDefined::keyUp, false, modifierFlags);
  return send(platform::systemDefined::eventType, &event);
}

TapResult SimEventTaps::send(std::uint32_t type, const InputEvent* event) {
  const auto description = describe(type, event);
  const auto result = filter(type, event);
  trace_.add((result == TapResult::swallow ? "tap swallows " : "desktop gets ") + description);
  return result;
}

TapResult SimEventTaps::filter(std::uint32_t type, const InputEvent* event) {
  std::vector<std::shared_ptr<const TapCallbacks>> active;
  for (const auto* tap : taps_) {
    if (tap->isEnabled() && tap->isConnected() && tap->sees(type)) {
      active.push_back(tap->callbacks());
    }
  }
  const bool isSwallowed = std::any_of(active.begin(), active.end(), [&](const auto& callbacks) {
    return callbacks->handleEvent && callbacks->handleEvent(type, event) == TapResult::swallow;
  });
  return isSwallowed ? TapResult::swallow : TapResult::pass;
}

void SimEventTaps::disableTaps(std::uint32_t reason) {
  std::vector<std::shared_ptr<const TapCallbacks>> told;
  for (auto* tap : taps_) {
    if (!tap->isEnabled()) continue;
    tap->enable(false);
    if (tap->isConnected()) told.push_back(tap->callbacks());
  }
  trace_.add(reason == platform::tapDisabledByTimeout ? "tap told: disabled by timeout"
                                                      : "tap told: disabled by user input");
  for (const auto& callbacks : told) {
    if (callbacks->handleEvent) callbacks->handleEvent(reason, nullptr);
  }
}

std::size_t SimEventTaps::activeTapCount() const {
  return static_cast<std::size_t>(std::count_if(taps_.begin(), taps_.end(), [](const Tap* tap) {
    return tap->isEnabled() && tap->isConnected();
  }));
}

}  // namespace valdrix::sim
