#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "desktop/audio/PulseFolderWatch.h"
#include "desktop/audio/PulseHandles.h"

namespace valdrix::desktop {

/// The link to the sound server, on a thread of its own: connects, and connects again whenever the
/// server comes back. Never starts a server.
///
/// After a loss it tries again with growing pauses. Where the server's folder can be watched it
/// then rests until something appears there; where it cannot (another machine's server, no runtime
/// folder), or the server is there but doesn't answer, it goes on trying every half minute.
class PulseConnection {
 public:
  struct Callbacks {
    /// The server can be talked to over this context until `onLost`, or until `onReady` gives
    /// another one.
    std::function<void(pa_context*)> onReady;
    /// The server went away, or could not be reached.
    std::function<void()> onLost;
  };

  /// Starts connecting. The callbacks run on the connection's thread, until the destructor returns.
  explicit PulseConnection(Callbacks callbacks);
  ~PulseConnection();
  PulseConnection(const PulseConnection&) = delete;
  PulseConnection& operator=(const PulseConnection&) = delete;

  /// Makes another connection to the server and moves over once that is ready; until then the old
  /// one serves. Does nothing while not connected. Its owner holds the connection's thread off with
  /// `perform`.
  void reconnect();

  /// Runs `block` while the connection's thread runs none of the callbacks.
  template <class F>
  void perform(F&& block) {
    if (!mainloop_) return;
    pa_threaded_mainloop_lock(mainloop_.get());
    std::forward<F>(block)();
    pa_threaded_mainloop_unlock(mainloop_.get());
  }

 private:
  void connect();
  bool open(PulseHandle<pa_context>& context);
  [[nodiscard]] bool isReady() const;
  void handleState(pa_context* context);
  void useSpare();
  void handleLoss();
  void scheduleAttempt(pa_usec_t delay);
  [[nodiscard]] bool mayRest();
  void startWatching();

  Callbacks callbacks_;
  std::optional<std::string> folder_;
  PulseHandle<pa_threaded_mainloop> mainloop_;
  pa_mainloop_api* api_ = nullptr;
  std::unique_ptr<PulseFolderWatch> watch_;
  PulseEvent<pa_time_event> attempt_;
  PulseHandle<pa_context> context_;
  PulseHandle<pa_context> spare_;  ///< the one to move over to
  bool isLinked_ = false;          ///< from an attempt's start until its failure or loss
  bool isRemote_ = false;
  pa_usec_t nextDelay_;
};

}  // namespace valdrix::desktop
