#include "desktop/keys/MediaKeyTaps.h"

#include <algorithm>
#include <utility>

namespace valdrix::desktop {

using platform::MediaKey;

namespace {

platform::InputEvent inputEvent(const MediaKeyEvent& event) {
  namespace sd = platform::systemDefined;
  const auto code = static_cast<std::uint32_t>(event.key);
  const std::uint32_t state = event.isDown ? sd::keyDown : sd::keyUp;
  return {sd::auxiliaryControlButtons,
          static_cast<std::int64_t>(code << 16 | state << 8 | (event.isRepeat ? 1U : 0U)),
          event.modifierFlags};
}

}  // namespace

class MediaKeyTaps::Tap final : public platform::EventTap {
 public:
  Tap(MediaKeyTaps& owner, std::uint32_t mask, platform::TapCallbacks callbacks)
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
  bool wants(MediaKey key) const {
    return isActive() &&
           (!callbacks_->wouldSwallow || callbacks_->wouldSwallow(static_cast<std::uint32_t>(key)));
  }
  /// Shared, so that a callback may destroy its tap.
  std::shared_ptr<const platform::TapCallbacks> callbacks() const { return callbacks_; }

 private:
  void connect(int change) {
    connections_ += change;
    owner_.reconsider();
  }

  MediaKeyTaps& owner_;
  bool seesKeys_;
  std::shared_ptr<const platform::TapCallbacks> callbacks_;
  bool isEnabled_ = false;
  int connections_ = 0;
  Lifetime lifetime_;
};

MediaKeyTaps::MediaKeyTaps(platform::RunLoop& runLoop, const std::vector<KeySource::Maker>& sources)
    : runLoop_(runLoop) {
  for (const auto& make : sources)
    sources_.push_back(make({.pressed = [this](const MediaKeyEvent& event) { decide(event); },
                             .changed = lifetime_.weak([this] { reconsider(); })}));
  told_ = account();
}

MediaKeyTaps::~MediaKeyTaps() = default;

std::unique_ptr<platform::EventTap> MediaKeyTaps::createTap(platform::TapLocation,
                                                            platform::TapPlacement,
                                                            platform::TapOptions,
                                                            std::uint32_t mask,
                                                            platform::TapCallbacks callbacks) {
  return std::make_unique<Tap>(*this, mask, std::move(callbacks));
}

bool MediaKeyTaps::isProcessTrustedWithOptions(bool prompt) {
  const bool isTrusted = isProcessTrusted();
  if (prompt && !isTrusted && onPrompt_) onPrompt_();
  return isTrusted;
}

std::set<MediaKey> MediaKeyTaps::wantedKeys() const {
  std::set<MediaKey> wanted;
  for (const auto& [key, word] : platform::mediaKeys)
    if (!(isFutile_ && isFutile_(key)) &&
        std::ranges::any_of(taps_, [key = key](const Tap* tap) { return tap->wants(key); }))
      wanted.insert(key);
  return wanted;
}

const KeySource* MediaKeyTaps::sourceOf(MediaKey key) const {
  const auto source =
      std::ranges::find_if(sources_, [key](const auto& one) { return one && one->offers(key); });
  return source == sources_.end() ? nullptr : source->get();
}

void MediaKeyTaps::reconsider() {
  wanted_ = wantedKeys();
  for (const auto& source : sources_) {
    std::set<MediaKey> keys;
    for (const auto key : wanted_)
      if (sourceOf(key) == source.get()) keys.insert(key);
    source->hold(keys);
  }
  if (account() == told_ || std::exchange(isTelling_, true)) return;
  runLoop_.async(lifetime_.weak([this] { tellOfChange(); }));
}

void MediaKeyTaps::tellOfChange() {
  isTelling_ = false;
  if (account() == told_) return;
  told_ = account();
  observers_.notify();
}

KeyAccount MediaKeyTaps::account() const {
  KeyAccount account;
  for (const auto& [key, word] : platform::mediaKeys) {
    const auto* const source = sourceOf(key);
    const auto state = source ? source->state(key) : KeyState::withheld;
    const bool isWanted = wanted_.contains(key);
    account.keys.push_back(
        {.key = key,
         .isWanted = isWanted,
         .state = isWanted || state == KeyState::absent ? state : KeyState::released,
         .source = source ? source->name() : std::string()});
  }
  return account;
}

void MediaKeyTaps::decide(const MediaKeyEvent& event) {
  std::vector<std::shared_ptr<const platform::TapCallbacks>> active;
  for (const auto* tap : taps_)
    if (tap->isActive()) active.push_back(tap->callbacks());
  const auto input = inputEvent(event);
  for (const auto& callbacks : active) {
    constexpr auto type = platform::systemDefined::eventType;
    const bool isSwallowed = callbacks->handleEvent &&
                             callbacks->handleEvent(type, &input) == platform::TapResult::swallow;
    if (isSwallowed) return;
  }
}

}  // namespace valdrix::desktop
