#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>

#include "desktop/audio/PulseHandles.h"
#include "desktop/audio/PulseSnapshot.h"

namespace valdrix::desktop {

/// What to change about a sink.
struct SinkWrite {
  std::optional<pa_cvolume> volume;
  std::optional<bool> isMuted;
};
/// By the sinks' names.
using SinkWrites = std::map<std::string, SinkWrite>;

/// Adds `newer` to `writes`; for each value the newer one stays.
void merge(SinkWrites& writes, const SinkWrites& newer);

/// The server's sinks over a connection: one snapshot after every change, and writes. Belongs to
/// the connection's thread; its owner holds that thread off while it calls `write`.
///
/// One batch of writes is under way at a time, and what comes meanwhile is merged into the next.
/// The sinks are read again only between batches, so that values written together are seen
/// together.
class PulseSinks {
 public:
  /// `deliver` is called with each snapshot that differs from the one before.
  explicit PulseSinks(std::function<void(const PulseSnapshot&)> deliver);

  /// Uses `context` from now on. Without a `detach` before, it is another connection to the same
  /// server, and what the one before may not have sent goes out again.
  void attach(pa_context* context);
  void detach();
  void write(const SinkWrites& writes);

 private:
  void subscribe();
  void refresh();
  void takeServer(const pa_server_info& info);
  void finishRefresh();
  void deliver(const PulseSnapshot& snapshot);
  void send();
  void expectAnswer(pa_operation* operation);
  void handleAnswer();

  std::function<void(const PulseSnapshot&)> deliver_;
  pa_context* context_ = nullptr;
  std::uint64_t servers_ = 0;
  std::uint64_t connections_ = 0;
  std::optional<PulseSnapshot> delivered_;

  PulseSnapshot arriving_;
  bool isRefreshing_ = false;
  bool isStale_ = false;  ///< something changed since the last refresh began

  SinkWrites waiting_;
  SinkWrites underWay_;
  int answersExpected_ = 0;
};

}  // namespace valdrix::desktop
