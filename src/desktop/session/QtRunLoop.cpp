#include "desktop/session/QtRunLoop.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>
#include <utility>

#include <QTimerEvent>

namespace valdrix::desktop {

namespace {

// Qt counts a timer in an int of milliseconds; what lies further away is reached in several legs.
int millisecondsUntil(double seconds) {
  constexpr double longestLeg = std::numeric_limits<int>::max();
  return static_cast<int>(std::clamp(std::ceil(seconds * 1000), 0.0, longestLeg));
}

/// The first of the instants `deadline`, `deadline + interval`, … after `now`: ticks stay on their
/// beat, and those that were missed are dropped.
double nextTick(double deadline, double interval, double now) {
  const double missed = std::floor(std::max(0.0, now - deadline) / interval);
  return std::max(deadline + (missed + 1) * interval, std::nextafter(now, HUGE_VAL));
}

}  // namespace

double QtRunLoop::now() const {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

Token QtRunLoop::scheduleTimer(double interval, bool repeats, std::function<void()> block) {
  const bool isPositive = interval > 0;
  const auto id = nextId_++;
  Timer& timer = timers_[id];
  timer = {now() + (isPositive ? interval : 0), interval, repeats && isPositive,
           std::make_shared<const std::function<void()>>(std::move(block))};
  arm(timer);
  return Token([this, id] {
    const auto found = timers_.find(id);
    if (found == timers_.end()) return;
    disarm(found->second);
    timers_.erase(found);
  });
}

void QtRunLoop::arm(Timer& timer) {
  if (std::isinf(timer.deadline)) return;
  // Coarse timers may fire up to a twentieth too early, which no tick may.
  timer.qtTimer = startTimer(millisecondsUntil(timer.deadline - now()), Qt::PreciseTimer);
}

void QtRunLoop::disarm(Timer& timer) {
  if (const int running = std::exchange(timer.qtTimer, 0)) killTimer(running);
}

void QtRunLoop::timerEvent(QTimerEvent* event) {
  const auto timer = std::find_if(timers_.begin(), timers_.end(), [&](const auto& entry) {
    return entry.second.qtTimer == event->timerId();
  });
  if (timer == timers_.end()) return;
  disarm(timer->second);
  if (now() < timer->second.deadline) {
    arm(timer->second);
  } else {
    fire(timer);
  }
}

void QtRunLoop::fire(Timers::iterator timer) {
  // The block may end this timer or schedule others, so nothing of the entry is used after it.
  const auto block = timer->second.block;
  if (timer->second.repeats) {
    timer->second.deadline = nextTick(timer->second.deadline, timer->second.interval, now());
    arm(timer->second);
  } else {
    timers_.erase(timer);
  }
  (*block)();
}

void QtRunLoop::async(std::function<void()> block) {
  QMetaObject::invokeMethod(this, std::move(block), Qt::QueuedConnection);
}

}  // namespace valdrix::desktop
