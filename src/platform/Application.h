#pragma once

namespace valdrix::platform {

enum class ActivationPolicy {
  regular = 0,
  /// No entry in a dock or task bar and no menu of its own; windows appear only when asked for.
  accessory = 1,
  prohibited = 2,
};

/// The running program as the desktop sees it. Main thread only.
class Application {
 public:
  virtual ~Application() = default;

  virtual void setActivationPolicy(ActivationPolicy policy) = 0;
  /// Makes this the active program, as far as the desktop lets it: what windows it has come to the
  /// front, and one that opens next opens there.
  virtual void activate() = 0;
  /// Ends the program by the normal way out, after the current turn of the loop.
  virtual void terminate() = 0;
};

}  // namespace valdrix::platform
