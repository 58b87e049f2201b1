#pragma once

#include <functional>
#include <string>

#include "desktop/audio/PulseSnapshot.h"
#include "platform/RunLoop.h"

namespace valdrix::desktop {

/// Decides when to ask PipeWire's sound server again over a new connection. Main thread only.
///
/// That server keeps what it knows of the default sink for each connection on its own, and
/// such a record may miss a change, mostly one right after the connection was made or while the
/// session's manager restarts; then it stays wrong. So there is one second look a while after a
/// server has appeared, another one after each that found what had been missed, and more of them,
/// ever more rarely, while a server has sinks but names none of them as the default.
class SecondLook {
 public:
  static constexpr double afterAppearance = 3;
  static constexpr double firstDoubt = 1.5;
  static constexpr double longestDoubt = 60;

  /// `look` makes the new connection.
  SecondLook(platform::RunLoop& runLoop, std::function<void()> look);

  void receive(const PulseSnapshot& snapshot);

 private:
  void scheduleLook(double delay);
  void lookNow();

  platform::RunLoop& runLoop_;
  std::function<void()> look_;
  std::uint64_t server_ = 0;
  std::uint64_t connection_ = 0;
  std::string defaultSink_;
  bool isWorthIt_ = false;   ///< there is a sink to ask about
  bool isDoubtful_ = false;  ///< and none of them is the default
  double doubtDelay_ = firstDoubt;
  Token timer_;
};

}  // namespace valdrix::desktop
