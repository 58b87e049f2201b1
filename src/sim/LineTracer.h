#pragma once

#include <functional>
#include <string>
#include <vector>

#include "observation/Lifetime.h"
#include "observation/Observer.h"
#include "platform/RunLoop.h"
#include "sim/Trace.h"

namespace valdrix::sim {

/// One line of what a user sees, and what tells it from the others while its text changes.
struct SeenLine {
  std::string key;
  std::string text;
};

/// Traces what changes of what a user sees, as lines of one channel: each line that is new or reads
/// otherwise than before, and each one that is gone. After a change of a value that they were made
/// from, that is at the loop's next turn.
class LineTracer {
 public:
  /// Starts with no lines, and with the first call. `trace` and `runLoop` must outlive it.
  LineTracer(std::string channel, std::function<std::vector<SeenLine>()> lines, Trace& trace,
             platform::RunLoop& runLoop);

  /// Takes the lines that are there now for known.
  void begin() { latest_ = observer_.track(lines_); }
  void update();
  /// Traces all lines.
  void report();
  /// Has `update` called at the loop's next turn.
  void schedule();

 private:
  std::string channel_;
  std::function<std::vector<SeenLine>()> lines_;
  Trace& trace_;
  platform::RunLoop& runLoop_;
  std::vector<SeenLine> latest_;
  bool isUpdateScheduled_ = false;
  Observer observer_;
  Lifetime lifetime_;
};

}  // namespace valdrix::sim
