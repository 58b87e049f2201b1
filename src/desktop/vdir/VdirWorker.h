#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>

#include "desktop/session/UniqueFd.h"
#include "desktop/vdir/DiskLooks.h"
#include "desktop/vdir/Pace.h"
#include "desktop/vdir/VdirHorizon.h"
#include "desktop/vdir/VdirPaths.h"
#include "desktop/vdir/VdirSnapshot.h"

namespace valdrix::desktop {

class VdirStore;

/// The thread that keeps a `VdirStore` up to date: says what is done when. Sleeps until a notice of
/// the system or a request comes. A thread that a disk keeps is left behind: it owns all that it
/// touches, and ends when the disk lets it.
class VdirWorker {
 public:
  /// Both are called on the thread, and neither after `stop`.
  struct Callbacks {
    std::function<void(std::shared_ptr<const VdirSnapshot>)> publish;
    std::function<void()> wake;  ///< it works again, and has not been watched since `isAtRest`
  };

  /// Starts the thread, which leaves out what is `silent`.
  [[nodiscard]] static std::shared_ptr<VdirWorker> start(VdirPaths paths, VdirHorizon horizon,
                                                         std::shared_ptr<SilentPlaces> silent,
                                                         Callbacks callbacks);
  VdirWorker(VdirHorizon horizon, std::shared_ptr<SilentPlaces> silent, Callbacks callbacks);

  /// Ends the thread. Waits for it, which takes milliseconds, unless a disk keeps it.
  void stop();
  void request(VdirHorizon horizon);
  /// Whether nothing is being done. After true the next work is announced.
  [[nodiscard]] bool isAtRest();
  /// Whether a disk has not answered for as long as `patience`: the thread is of no use any more,
  /// and the place in question is silent until it answers.
  [[nodiscard]] bool giveUp(std::chrono::milliseconds patience) { return looks_.giveUp(patience); }

 private:
  using Clock = Pace::Clock;

  void run(const VdirPaths& paths);
  void work(const VdirPaths& paths);
  void wait(const VdirStore& store);
  void announce();
  void publish(VdirStore& store);
  [[nodiscard]] Clock::time_point nextTurn(const VdirStore& store) const;
  void takeRequest(VdirStore& store);
  void takeTurn(VdirStore& store);
  [[nodiscard]] Clock::time_point nextSave() const;
  void wake() const;

  UniqueFd wakeUp_;
  DiskLooks looks_;
  std::atomic<bool> isAtRest_ = false;
  std::atomic<bool> isWatched_ = true;  ///< whether somebody asks `isAtRest` from time to time
  std::mutex mutex_;
  std::condition_variable ended_;
  bool hasEnded_ = false;               ///< guarded by `mutex_`
  Callbacks callbacks_;                 ///< guarded by `mutex_`
  std::optional<VdirHorizon> request_;  ///< guarded by `mutex_`

  // The thread's own.
  Pace searching_;
  Pace publishing_;
  bool wasWhole_ = false;                      ///< whether all was read that there was
  std::optional<Clock::time_point> oldSince_;  ///< when the index on disk became out of date
  std::optional<Clock::time_point> saved_;
  Clock::time_point lookedAgain_{};
};

}  // namespace valdrix::desktop
