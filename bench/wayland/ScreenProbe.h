#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include <QRect>

namespace valdrix::bench {

/// Sees what a compositor shows on its first output, as a program that records the screen does:
/// each picture comes when the compositor has made it, and none without a change.
class ScreenProbe {
 public:
  /// Connects to what the environment says and looks at an area, in logical pixels.
  explicit ScreenProbe(const QRect& area);
  ~ScreenProbe();
  ScreenProbe(const ScreenProbe&) = delete;
  ScreenProbe& operator=(const ScreenProbe&) = delete;

  using Picture = std::vector<std::uint32_t>;
  /// What the area shows; empty when the compositor does not say.
  [[nodiscard]] Picture picture();
  /// Seconds from the begin of `act` to the first picture that is another one than before; nothing
  /// when none has come after `limit`.
  [[nodiscard]] std::optional<double> secondsToChange(const std::function<void()>& act,
                                                      double limit = 2);
  /// Waits until the area shows that, for `limit` seconds at most. Whether it does.
  [[nodiscard]] bool awaitPicture(const Picture& wanted, double limit = 10);

 private:
  class Recording;
  std::unique_ptr<Recording> recording_;
};

}  // namespace valdrix::bench
