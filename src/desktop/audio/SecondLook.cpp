#include "desktop/audio/SecondLook.h"

#include <algorithm>
#include <utility>

namespace valdrix::desktop {

SecondLook::SecondLook(platform::RunLoop& runLoop, std::function<void()> look)
    : runLoop_(runLoop), look_(std::move(look)) {}

void SecondLook::receive(const PulseSnapshot& snapshot) {
  if (!snapshot.isPipeWire) return timer_.reset();
  const bool isNewServer = std::exchange(server_, snapshot.server) != snapshot.server;
  const bool isNewConnection =
      std::exchange(connection_, snapshot.connection) != snapshot.connection;
  const bool isOther = std::exchange(defaultSink_, snapshot.defaultSink) != snapshot.defaultSink;
  const bool hasMissed = isOther && isNewConnection && !isNewServer;
  const bool wasDoubtful = std::exchange(isDoubtful_, snapshot.hasUnnamedOutput());
  isWorthIt_ = isDoubtful_ || snapshot.output();
  if (isNewServer || hasMissed) scheduleLook(afterAppearance);
  if (snapshot.output()) doubtDelay_ = firstDoubt;
  if (isDoubtful_ && (!wasDoubtful || !timer_)) {
    scheduleLook(doubtDelay_);
    doubtDelay_ = std::min(2 * doubtDelay_, longestDoubt);
  }
}

void SecondLook::scheduleLook(double delay) {
  timer_ = runLoop_.scheduleTimer(delay, false, [this] { lookNow(); });
}

void SecondLook::lookNow() {
  timer_.reset();
  if (isWorthIt_) look_();
}

}  // namespace valdrix::desktop
