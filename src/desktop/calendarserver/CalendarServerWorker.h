#pragma once

#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

#include "observation/Lifetime.h"
#include "platform/RunLoop.h"

namespace valdrix::desktop {

/// A thread, from the first need on, for work that would keep the main thread too long. Main thread
/// only.
class CalendarServerWorker {
 public:
  /// `runLoop` outlives this.
  explicit CalendarServerWorker(platform::RunLoop& runLoop) : runLoop_(runLoop) {}
  /// Waits for the piece of work that is being done, which sees `isEnding`.
  ~CalendarServerWorker();
  CalendarServerWorker(const CalendarServerWorker&) = delete;
  CalendarServerWorker& operator=(const CalendarServerWorker&) = delete;

  /// Calls `work(isEnding)` on the thread, after all that was given before, and `done` with its
  /// result on the main thread, unless this is gone by then. `work` looks at `isEnding` now and
  /// then, and ends when it has become true.
  template <class Work, class Done>
  void run(Work work, Done done) {
    using Result = decltype(work(isEnding_));
    struct Handover {
      std::mutex mutex;
      std::optional<Result> result;
    };
    auto handover = std::make_shared<Handover>();
    auto finish = lifetime_.weak([handover, done = std::move(done)] {
      const std::lock_guard lock(handover->mutex);
      done(*handover->result);
    });
    enqueue([this, work = std::move(work), handover, finish = std::move(finish)] {
      {
        const std::lock_guard lock(handover->mutex);
        handover->result = work(isEnding_);
      }
      runLoop_.async(finish);
    });
  }
  /// Drops the work that has not begun.
  void forget();

 private:
  void enqueue(std::function<void()> block);
  void work();

  platform::RunLoop& runLoop_;
  std::mutex mutex_;
  std::condition_variable wake_;
  std::deque<std::function<void()>> queue_;
  std::atomic_bool isEnding_ = false;
  std::thread thread_;
  Lifetime lifetime_;
};

}  // namespace valdrix::desktop
