#include "desktop/x11/X11EventTaps.h"

#include <algorithm>
#include <set>
#include <utility>

#include "observation/Lifetime.h"

namespace valdrix::desktop {

namespace {

platform::InputEvent inputEvent(const MediaKeyEvent& event) {
  namespace sd = platform::systemDefined;
  const std::uint32_t state = event.isDown ? sd::keyDown : sd::keyUp;
  return {sd::auxiliaryControlButtons,
          static_cast<std::int64_t>(event.code << 16 | state << 8 | (event.isRepeat ? 1U : 0U)),
          event.modifierFlags};
}

}  // namespace

class X11EventTaps::Tap final : public platform::EventTap {
 public:
  Tap(X11EventTaps& owner, std::uint32_t mask, platform::TapCallbacks callbacks)
      : owner_(owner),
        seesKeys_(mask & (1U << platform::systemDefined::eventType)),
        callbacks_(std::make_shared<const platform::TapCallbacks>(std::move(callbacks))) {
    owner_.taps_.insert(owner_.taps_.begin(), this);
  }
  ~Tap() override {
    std::erase(owner_.taps_, this);
    owner_.reconsider();
  }
  Tap(const Tap&) = delete;
  Tap& operator=(const Tap&) = delete;

  void enable(bool isEnabled) override {
    isEnabled_ = isEnabled;
    owner_.reconsider();
  }
  bool isEnabled() const override { return isEnabled_; }
  Token addToMainRunLoop() override {
    connect(1);
    return Token(lifetime_.weak([this] { connect(-1); }));
  }

  bool isActive() const { return isEnabled_ && connections_ > 0 && seesKeys_; }
  /// Shared, so that a callback may destroy its tap.
  std::shared_ptr<const platform::TapCallbacks> callbacks() const { return callbacks_; }

 private:
  void connect(int change) {
    connections_ += change;
    owner_.reconsider();
  }

  X11EventTaps& owner_;
  bool seesKeys_;
  std::shared_ptr<const platform::TapCallbacks> callbacks_;
  bool isEnabled_ = false;
  int connections_ = 0;
  Lifetime lifetime_;
};

X11EventTaps::X11EventTaps(platform::RunLoop& runLoop, std::string display)
    : runLoop_(runLoop), display_(std::move(display)) {}

X11EventTaps::~X11EventTaps() = default;

std::unique_ptr<platform::EventTap> X11EventTaps::createTap(platform::TapLocation,
                                                            platform::TapPlacement,
                                                            platform::TapOptions,
                                                            std::uint32_t mask,
                                                            platform::TapCallbacks callbacks) {
  if (!canInstallTap()) return nullptr;
  return std::make_unique<Tap>(*this, mask, std::move(callbacks));
}

bool X11EventTaps::connect() {
  if (keyboard_ && keyboard_->isConnected()) return true;
  // The one that lost its server may be the caller's caller.
  if (keyboard_) runLoop_.async([gone = std::shared_ptr(std::move(keyboard_))] {});
  keyboard_ = std::make_unique<MediaKeyboard>(
      display_, runLoop_, [this](const MediaKeyEvent& event) { return decide(event); });
  if (!keyboard_->isConnected()) return false;
  reconsider();
  return true;
}

bool X11EventTaps::canInstallTap() {
  return connect() && (hasActiveTap() || keyboard_->canHoldAny());
}

bool X11EventTaps::hasActiveTap() const {
  return std::any_of(taps_.begin(), taps_.end(), [](const Tap* tap) { return tap->isActive(); });
}

void X11EventTaps::reconsider() {
  if (!keyboard_) return;
  std::set<std::uint32_t> wanted;
  for (const auto* tap : taps_) {
    if (!tap->isActive()) continue;
    const auto callbacks = tap->callbacks();
    for (const auto code : mediaKeyCodes) {
      if (!callbacks->wouldSwallow || callbacks->wouldSwallow(code)) wanted.insert(code);
    }
  }
  keyboard_->hold(std::move(wanted));
}

bool X11EventTaps::decide(const MediaKeyEvent& event) {
  std::vector<std::shared_ptr<const platform::TapCallbacks>> active;
  for (const auto* tap : taps_) {
    if (tap->isActive()) active.push_back(tap->callbacks());
  }
  // What is left of a press that was swallowed by a tap that has gone belongs to nobody.
  if (active.empty()) return event.isRepeat;
  const auto input = inputEvent(event);
  return std::any_of(active.begin(), active.end(), [&](const auto& callbacks) {
    return callbacks->handleEvent && callbacks->handleEvent(platform::systemDefined::eventType,
                                                            &input) == platform::TapResult::swallow;
  });
}

MediaKeyStatus X11EventTaps::status() const {
  return keyboard_ && keyboard_->isConnected() ? keyboard_->status() : MediaKeyStatus{};
}

}  // namespace valdrix::desktop
