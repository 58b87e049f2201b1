#include "desktop/calendarserver/CalendarServerWorker.h"

namespace valdrix::desktop {

CalendarServerWorker::~CalendarServerWorker() {
  {
    const std::lock_guard lock(mutex_);
    isEnding_ = true;
  }
  wake_.notify_all();
  if (thread_.joinable()) thread_.join();
}

void CalendarServerWorker::enqueue(std::function<void()> block) {
  {
    const std::lock_guard lock(mutex_);
    queue_.push_back(std::move(block));
  }
  wake_.notify_all();
  if (!thread_.joinable()) thread_ = std::thread([this] { work(); });
}

void CalendarServerWorker::forget() {
  std::deque<std::function<void()>> forgotten;
  const std::lock_guard lock(mutex_);
  forgotten.swap(queue_);
}

void CalendarServerWorker::work() {
  std::unique_lock lock(mutex_);
  while (true) {
    wake_.wait(lock, [this] { return isEnding_ || !queue_.empty(); });
    if (isEnding_) return;
    auto block = std::move(queue_.front());
    queue_.pop_front();
    lock.unlock();
    block();
    block = nullptr;
    lock.lock();
  }
}

}  // namespace valdrix::desktop
