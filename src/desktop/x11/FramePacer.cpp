#include "desktop/x11/FramePacer.h"

#include <algorithm>
#include <cmath>

namespace valdrix::desktop {

FramePacer::FramePacer(std::function<void()> drawFrame) : drawFrame_(std::move(drawFrame)) {
  clock_.start();
}

void FramePacer::request() {
  if (timer_.isActive()) return;
  const auto now = static_cast<double>(clock_.nsecsElapsed()) / 1e6;
  due_ = std::max(now, latest_ + 1000 / refreshRate_);
  timer_.start(static_cast<int>(std::lround(due_ - now)), Qt::PreciseTimer, this);
}

void FramePacer::cancel() { timer_.stop(); }

void FramePacer::timerEvent(QTimerEvent*) {
  timer_.stop();
  // The next frame is counted from when this one was due, so that rounding to milliseconds and late
  // timers do not add up; after a longer delay a new rhythm begins.
  const auto now = static_cast<double>(clock_.nsecsElapsed()) / 1e6;
  latest_ = now - due_ < 1000 / refreshRate_ ? due_ : now;
  drawFrame_();
}

}  // namespace valdrix::desktop
