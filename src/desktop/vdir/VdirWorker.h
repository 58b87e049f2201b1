#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

#include "desktop/session/UniqueFd.h"
#include "desktop/vdir/Pace.h"
#include "desktop/vdir/VdirHorizon.h"
#include "desktop/vdir/VdirPaths.h"
#include "desktop/vdir/VdirSnapshot.h"

namespace valdrix::desktop {

class VdirStore;

/// The thread that keeps a `VdirStore` up to date: says what is done when. Sleeps until a notice of
/// the system or a request comes.
class VdirWorker {
 public:
  using Publish = std::function<void(std::shared_ptr<const VdirSnapshot>)>;

  /// `publish` is called on the thread.
  VdirWorker(VdirPaths paths, VdirHorizon horizon, Publish publish);
  /// Waits until the thread has ended, which takes milliseconds unless a disk does not answer.
  ~VdirWorker();
  VdirWorker(const VdirWorker&) = delete;
  VdirWorker& operator=(const VdirWorker&) = delete;

  void request(VdirHorizon horizon);

 private:
  using Clock = Pace::Clock;

  void run(const VdirPaths& paths);
  void wait(const VdirStore& store) const;
  [[nodiscard]] Clock::time_point nextTurn(const VdirStore& store) const;
  void takeRequest(VdirStore& store);
  void takeTurn(VdirStore& store);
  [[nodiscard]] Clock::time_point nextSave() const;
  void wake() const;

  Publish publish_;
  UniqueFd wakeUp_;
  std::atomic<bool> isStopped_ = false;
  std::mutex mutex_;
  std::optional<VdirHorizon> request_;  ///< guarded by `mutex_`

  // The thread's own.
  Pace searching_;
  Pace publishing_;
  bool wasWhole_ = false;                      ///< whether all was read that there was
  std::optional<Clock::time_point> oldSince_;  ///< when the index on disk became out of date
  std::optional<Clock::time_point> saved_;
  Clock::time_point lookedAgain_{};

  std::thread thread_;
};

}  // namespace valdrix::desktop
