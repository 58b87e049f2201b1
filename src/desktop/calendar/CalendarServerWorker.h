#pragma once

#include <atomic>
#include <functional>
#include <utility>

#include <QThreadPool>

#include "observation/Lifetime.h"
#include "platform/RunLoop.h"

namespace valdrix::desktop {

/// One thread, as long as there is something to do, for work that would keep the main thread too
/// long. Main thread only.
class CalendarServerWorker {
 public:
  /// `runLoop` outlives this.
  explicit CalendarServerWorker(platform::RunLoop& runLoop) : runLoop_(runLoop) {
    pool_.setMaxThreadCount(1);
  }
  /// Waits for the piece of work that is being done, which sees `isEnding`.
  ~CalendarServerWorker() {
    isEnding_ = true;
    pool_.clear();
    pool_.waitForDone();
  }
  CalendarServerWorker(const CalendarServerWorker&) = delete;
  CalendarServerWorker& operator=(const CalendarServerWorker&) = delete;

  /// Calls `work(isEnding)` on the thread, after all that was given before, and `done` with its
  /// result on the main thread, unless this is gone by then. `work` looks at `isEnding` now and
  /// then, and ends when it has become true.
  template <class Work, class Done>
  void run(Work work, Done done) {
    pool_.start([this, work = std::move(work), done = lifetime_.weak(std::move(done))] {
      if (isEnding_) return;
      runLoop_.async([result = work(isEnding_), done] { done(result); });
    });
  }

 private:
  platform::RunLoop& runLoop_;
  std::atomic_bool isEnding_ = false;
  Lifetime lifetime_;
  QThreadPool pool_;
};

}  // namespace valdrix::desktop
