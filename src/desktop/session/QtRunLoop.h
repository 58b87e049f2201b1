#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>

#include <QObject>

#include "platform/RunLoop.h"

namespace valdrix::desktop {

/// The run loop on Qt's event loop. Belongs to the thread that makes it, and must outlive its
/// tokens; what is still waiting when it goes does not run.
class QtRunLoop final : public platform::RunLoop, private QObject {
 public:
  [[nodiscard]] double now() const override;
  [[nodiscard]] Token scheduleTimer(double interval, bool repeats,
                                    std::function<void()> block) override;
  void async(std::function<void()> block) override;

 private:
  struct Timer {
    double deadline;  ///< on the clock of `now`
    double interval;
    bool repeats;
    std::shared_ptr<const std::function<void()>> block;
    int qtTimer = 0;  ///< 0 while none runs
  };
  using Timers = std::map<std::uint64_t, Timer>;

  void timerEvent(QTimerEvent* event) override;
  void arm(Timer& timer);
  void disarm(Timer& timer);
  void fire(Timers::iterator timer);

  Timers timers_;
  std::uint64_t nextId_ = 1;
};

}  // namespace valdrix::desktop
