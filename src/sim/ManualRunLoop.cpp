#include "sim/ManualRunLoop.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace valdrix::sim {

ManualRunLoop::ManualRunLoop(Trace& trace) : trace_(trace) {
  trace_.setClock([this] { return now_; });
}

Token ManualRunLoop::scheduleTimer(double interval, bool repeats, std::function<void()> block) {
  const bool isPositive = interval > 0;
  const auto id = nextId_++;
  timers_.emplace(Key{now_ + (isPositive ? interval : 0), id},
                  Timer{interval, repeats && isPositive, std::move(block), Purpose::program});
  trace_.add("timer scheduled " + formatNumber(interval) + (repeats ? " repeating" : ""));
  return Token([this, id] { cancel(id); });
}

Token ManualRunLoop::scheduleUnseen(double delay, Purpose purpose, std::function<void()> block) {
  const auto id = nextId_++;
  timers_.emplace(Key{now_ + delay, id}, Timer{delay, false, std::move(block), purpose});
  return Token([this, id] { cancel(id); });
}

Token ManualRunLoop::scheduleFrame(double delay, std::function<void()> block) {
  return scheduleUnseen(delay, Purpose::frame, std::move(block));
}

Token ManualRunLoop::scheduleDesktopTimer(double delay, std::function<void()> block) {
  return scheduleUnseen(delay, Purpose::desktop, std::move(block));
}

std::size_t ManualRunLoop::timerCount() const {
  return static_cast<std::size_t>(
      std::count_if(timers_.begin(), timers_.end(),
                    [](const auto& entry) { return entry.second.purpose == Purpose::program; }));
}

void ManualRunLoop::cancel(std::uint64_t id) {
  const auto timer = std::find_if(timers_.begin(), timers_.end(),
                                  [&](const auto& entry) { return entry.first.second == id; });
  if (timer == timers_.end()) return;
  if (timer->second.purpose == Purpose::program)
    trace_.add("timer invalidated " + formatNumber(timer->second.interval));
  timers_.erase(timer);
}

void ManualRunLoop::async(std::function<void()> block) {
  const std::lock_guard lock(queueMutex_);
  queue_.push_back(std::move(block));
}

void ManualRunLoop::runQueue() {
  while (true) {
    std::function<void()> block;
    {
      const std::lock_guard lock(queueMutex_);
      if (queue_.empty()) return;
      block = std::move(queue_.front());
      queue_.pop_front();
    }
    block();
  }
}

bool ManualRunLoop::runFirstTimer(double until) {
  if (timers_.empty() || timers_.begin()->first.first > until) return false;
  auto node = timers_.extract(timers_.begin());
  now_ = std::max(now_, node.key().first);
  const auto block = node.mapped().block;
  if (node.mapped().purpose == Purpose::frame) ++frameCount_;
  if (node.mapped().repeats) {
    node.key().first = now_ + node.mapped().interval;
    timers_.insert(std::move(node));
  }
  block();
  return true;
}

void ManualRunLoop::runPending() { advance(0); }

void ManualRunLoop::advance(double seconds) {
  const double until = now_ + seconds;
  runQueue();
  while (runFirstTimer(until)) runQueue();
  now_ = until;
}

double ManualRunLoop::nextTimer() const {
  return timers_.empty() ? std::numeric_limits<double>::infinity() : timers_.begin()->first.first;
}

}  // namespace valdrix::sim
