#include "desktop/audio/SnapshotGate.h"

#include <algorithm>
#include <utility>

namespace valdrix::desktop {

namespace {

bool isSameOutput(const PulseSnapshot& a, const PulseSnapshot& b) {
  const PulseSink* outputA = a.output();
  const PulseSink* outputB = b.output();
  return outputA && outputB ? *outputA == *outputB : outputA == outputB;
}

}  // namespace

SnapshotGate::SnapshotGate(platform::RunLoop& runLoop,
                           std::function<void(const PulseSnapshot&)> believe)
    : runLoop_(runLoop), believe_(std::move(believe)) {}

void SnapshotGate::begin(const PulseSnapshot& first) {
  latest_ = first;
  enter(phaseAfter(latest_));
  if (latest_.connection != 0) believe();
}

void SnapshotGate::receive(const PulseSnapshot& snapshot) {
  const Phase phase = phaseAfter(snapshot);
  const bool isNew =
      phase != phase_ || (phase == Phase::settling && !isSameOutput(latest_, snapshot));
  latest_ = snapshot;
  if (phase != phase_) enter(phase);
  if (phase == Phase::settled || (phase == Phase::noOutput && !hasBelievedOutput_))
    believe();
  else if (isNew)
    settle();
}

SnapshotGate::Phase SnapshotGate::phaseAfter(const PulseSnapshot& snapshot) const {
  if (snapshot.connection == 0) return Phase::noServer;
  if (!snapshot.output()) return Phase::noOutput;
  const bool isSettled = phase_ == Phase::settled && snapshot.connection == latest_.connection;
  return isSettled ? Phase::settled : Phase::settling;
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
  hasBelievedOutput_ = latest_.output() != nullptr;
  if (hasBelievedOutput_) enter(Phase::settled);
  timer_.reset();
  believe_(latest_);
}

}  // namespace valdrix::desktop
