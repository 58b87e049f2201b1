#pragma once

#include <functional>
#include <memory>
#include <set>
#include <vector>

#include "desktop/keys/KeyAccount.h"
#include "desktop/keys/KeySource.h"
#include "observation/Lifetime.h"
#include "observation/Listeners.h"
#include "platform/Accessibility.h"
#include "platform/EventTaps.h"
#include "platform/RunLoop.h"

namespace valdrix::desktop {

/// Event taps that see the volume, mute and brightness keys, by whatever way each key comes, and
/// nothing else that is typed. A tap can always be installed. What it would swallow is wanted while
/// it is enabled and connected, and each wanted key is asked of the first source that offers it.
///
/// It is also the one account of the keys: trust is whether every wanted key is held. A key that is
/// held works whatever becomes of the others. Main thread only.
class MediaKeyTaps final : public platform::EventTaps, public platform::Accessibility {
 public:
  /// The sources in the order in which they are asked. `runLoop` outlives this, and this outlives
  /// its taps.
  MediaKeyTaps(platform::RunLoop& runLoop, const std::vector<KeySource::Maker>& sources);
  ~MediaKeyTaps() override;

  [[nodiscard]] std::unique_ptr<platform::EventTap> createTap(
      platform::TapLocation location, platform::TapPlacement placement,
      platform::TapOptions options, std::uint32_t mask, platform::TapCallbacks callbacks) override;
  /// Without a tap no key is wanted, so none is missing.
  [[nodiscard]] bool isProcessTrusted() override { return account().isComplete(); }
  bool isProcessTrustedWithOptions(bool prompt) override;

  /// Asks the taps again which keys they would swallow, and takes exactly those. To be called when
  /// the answer may have changed; keys given up are the desktop's when it returns.
  void reconsider();
  [[nodiscard]] KeyAccount account() const;
  /// The keys that the program would act on.
  [[nodiscard]] const std::set<platform::MediaKey>& wanted() const { return wanted_; }
  /// Calls `block` in a turn of its own after the account has changed.
  [[nodiscard]] Token observeAccount(std::function<void()> block) {
    return observers_.add(std::move(block));
  }
  /// Keys for which `isFutile` says so are not wanted: what they would do cannot be done.
  void setFutility(std::function<bool(platform::MediaKey)> isFutile) {
    isFutile_ = std::move(isFutile);
  }
  /// Calls `block` when the user is to be told how keys that are missing can be had.
  void setOnPrompt(std::function<void()> block) { onPrompt_ = std::move(block); }

 private:
  class Tap;

  void decide(const MediaKeyEvent& event);
  [[nodiscard]] std::set<platform::MediaKey> wantedKeys() const;
  [[nodiscard]] const KeySource* sourceOf(platform::MediaKey key) const;
  void tellOfChange();

  platform::RunLoop& runLoop_;
  std::vector<std::unique_ptr<KeySource>> sources_;
  std::vector<Tap*> taps_;  ///< the newest first
  std::set<platform::MediaKey> wanted_;
  KeyAccount told_;
  bool isTelling_ = false;
  Listeners<> observers_;
  std::function<void()> onPrompt_;
  std::function<bool(platform::MediaKey)> isFutile_;
  Lifetime lifetime_;
};

}  // namespace valdrix::desktop
