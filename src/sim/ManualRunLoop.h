#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <mutex>

#include "platform/RunLoop.h"
#include "sim/Trace.h"

namespace valdrix::sim {

/// A run loop whose clock stands still until it is told to move on. Everything due by then runs, in
/// order of its time and, at the same time, of its scheduling. The loop must outlive its tokens.
class ManualRunLoop : public platform::RunLoop {
 public:
  explicit ManualRunLoop(Trace& trace);

  [[nodiscard]] double now() const override { return now_; }
  [[nodiscard]] Token scheduleTimer(double interval, bool repeats,
                                    std::function<void()> block) override;
  void async(std::function<void()> block) override;
  /// A one-shot timer of the simulated screen: neither traced nor counted, because frames are not
  /// what the program asked a timer for.
  [[nodiscard]] Token scheduleFrame(double delay, std::function<void()> block);
  /// A one-shot timer of the simulated desktop for its own ends: neither traced nor counted.
  [[nodiscard]] Token scheduleDesktopTimer(double delay, std::function<void()> block);

  /// How many frame timers have run.
  [[nodiscard]] std::uint64_t frameCount() const { return frameCount_; }

  /// Runs what was submitted with `async` and every timer that is due now.
  void runPending();
  /// Moves the clock on by `seconds`, running everything due on the way.
  void advance(double seconds);
  [[nodiscard]] std::size_t timerCount() const;
  /// When the next timer is due; infinity without one.
  [[nodiscard]] double nextTimer() const;

 private:
  enum class Purpose { program, frame, desktop };
  struct Timer {
    double interval;
    bool repeats;
    std::function<void()> block;
    Purpose purpose;
  };
  using Key = std::pair<double, std::uint64_t>;

  Token scheduleUnseen(double delay, Purpose purpose, std::function<void()> block);
  void runQueue();
  bool runFirstTimer(double until);
  void cancel(std::uint64_t id);

  Trace& trace_;
  double now_ = 0;
  std::uint64_t nextId_ = 1;
  std::uint64_t frameCount_ = 0;
  std::map<Key, Timer> timers_;
  std::mutex queueMutex_;
  std::deque<std::function<void()>> queue_;
};

}  // namespace valdrix::sim
