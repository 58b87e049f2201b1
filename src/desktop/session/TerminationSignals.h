#pragma once

#include <functional>
#include <memory>

#include "desktop/session/UniqueFd.h"

class QSocketNotifier;

namespace valdrix::desktop {

/// Turns the signals that ask a program to end (SIGINT, SIGTERM, SIGHUP) into a call on the main
/// thread, so that the program leaves by its normal way.
class TerminationSignals {
 public:
  /// Holds the signals back from now on. To be made before any thread starts, since threads inherit
  /// what is held back. Does nothing when the system refuses.
  TerminationSignals();
  ~TerminationSignals();
  TerminationSignals(const TerminationSignals&) = delete;
  TerminationSignals& operator=(const TerminationSignals&) = delete;

  /// Calls `onTerminate` for every signal, also for one that came before. Needs an event loop.
  void watch(std::function<void()> onTerminate);

 private:
  UniqueFd signals_;
  std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace valdrix::desktop
