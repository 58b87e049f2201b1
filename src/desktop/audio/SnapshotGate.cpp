#include "desktop/audio/SnapshotGate.h"

#include <algorithm>
#include <utility>

namespace valdrix::desktop {

namespace {

std::optional<PulseSink> outputOf(const PulseSnapshot& snapshot) {
  const PulseSink* output = snapshot.output();
  return output ? std::optional(*output) : std::nullopt;
}

}  // namespace

SnapshotGate::SnapshotGate(platform::RunLoop& runLoop,
                           std::function<void(const PulseSnapshot&)> believe)
    : runLoop_(runLoop), believe_(std::move(believe)) {}

void SnapshotGate::receive(const PulseSnapshot& snapshot) {
  const Phase phase = phaseAfter(snapshot);
  const bool isNew =
      phase != phase_ || (phase == Phase::settling && outputOf(latest_) != outputOf(snapshot));
  latest_ = snapshot;
  if (phase != phase_) enter(phase);
  if (isCredible())
    believe();
  else if (isNew)
    settle();
}

void SnapshotGate::expectChange(const std::string& sink) {
  if (phase_ != Phase::settling) return;
  // The timer stays: what was asked for may be what is there already, and then nothing follows.
  if (latest_.output()->name == sink)
    phase_ = Phase::settled;
  else
    believeAfter(0);
}

SnapshotGate::Phase SnapshotGate::phaseAfter(const PulseSnapshot& snapshot) const {
  if (snapshot.server == 0) return Phase::noServer;
  if (!snapshot.output()) return Phase::noOutput;
  if (phase_ == Phase::unknown) return Phase::settled;
  const bool isSettled = phase_ == Phase::settled && snapshot.server == latest_.server;
  return isSettled ? Phase::settled : Phase::settling;
}

bool SnapshotGate::isCredible() const {
  if (phase_ == Phase::noOutput) return !believedOutput_;
  if (phase_ == Phase::settling) return outputOf(latest_) == believedOutput_;
  return phase_ == Phase::settled;
}

void SnapshotGate::enter(Phase phase) {
  phase_ = phase;
  phaseStart_ = runLoop_.now();
  timer_.reset();
}

void SnapshotGate::settle() {
  if (phase_ == Phase::noOutput) believeAfter(noOutputDelay);
  if (phase_ == Phase::settling)
    believeAfter(std::min(settleDelay, phaseStart_ + settleLimit - runLoop_.now()));
}

void SnapshotGate::believeAfter(double delay) {
  timer_ = runLoop_.scheduleTimer(delay, false, [this] { believe(); });
}

void SnapshotGate::believe() {
  believedOutput_ = outputOf(latest_);
  if (believedOutput_) enter(Phase::settled);
  timer_.reset();
  believe_(latest_);
}

}  // namespace valdrix::desktop
