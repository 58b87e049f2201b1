#pragma once

#include <functional>
#include <optional>
#include <string>

#include "desktop/audio/PulseSnapshot.h"
#include "platform/RunLoop.h"

namespace valdrix::desktop {

/// Decides when a snapshot of the sound server is believed. Main thread only.
///
/// - A server that goes away is no news: what was believed last stands until one is there again.
/// - "No output" is believed only when it lasts, because servers say so in passing: while a default
///   sink is replaced (for milliseconds), while the session's manager restarts (about a second) and
///   while a new server loads its cards. It makes nobody wait, as there is nothing to hear
///   meanwhile.
/// - After either of them, an output is believed once it has been the same for a moment: cards come
///   up one after the other, and their stored volumes a little after them. One that is as it was is
///   believed at once, and nothing waits any longer when the user asks for a change.
/// - In between every snapshot is believed at once, and so is the very first.
class SnapshotGate {
 public:
  /// How long an output must stay the same after a gap, how long that may take at most, and how
  /// long "no output" must last, in seconds.
  static constexpr double settleDelay = 0.25;
  static constexpr double settleLimit = 2;
  static constexpr double noOutputDelay = 3;

  /// `believe` is called with each snapshot that is believed.
  SnapshotGate(platform::RunLoop& runLoop, std::function<void(const PulseSnapshot&)> believe);

  void receive(const PulseSnapshot& snapshot);
  /// The user asks for a change of the sink of that name: what follows is no unrest, but the
  /// answer.
  void expectChange(const std::string& sink);
  /// The last snapshot received, believed or not.
  [[nodiscard]] const PulseSnapshot& latest() const { return latest_; }

 private:
  enum class Phase { unknown, noServer, noOutput, settling, settled };

  [[nodiscard]] Phase phaseAfter(const PulseSnapshot& snapshot) const;
  void enter(Phase phase);
  [[nodiscard]] bool isCredible() const;
  void settle();
  void believeAfter(double delay);
  void believe();

  platform::RunLoop& runLoop_;
  std::function<void(const PulseSnapshot&)> believe_;
  PulseSnapshot latest_;
  Phase phase_ = Phase::unknown;
  double phaseStart_ = 0;
  std::optional<PulseSink> believedOutput_;
  Token timer_;
};

}  // namespace valdrix::desktop
