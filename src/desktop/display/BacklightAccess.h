#pragma once

#include <functional>
#include <optional>

#include <QObject>
#include <QTimer>

#include "desktop/display/BacklightTree.h"
#include "desktop/display/BacklightWriter.h"
#include "observation/Listeners.h"

namespace valdrix::desktop {

/// Whether writing the backlight works. A login manager may be there and refuse all the same: the
/// session is not the seat's, or has none. It is asked at the start, and after a write has failed
/// every half a minute until one works, by writing the value that is there. Never waits.
class BacklightAccess {
 public:
  /// `writer` outlives this; `find` gives the backlight that would be written, if there is one.
  BacklightAccess(BacklightWriter& writer, std::function<std::optional<Backlight>()> find);

  /// True until a write has failed.
  [[nodiscard]] bool isGranted() const { return isGranted_; }
  /// What became of a write.
  void wrote(bool isWritten);
  /// Asks whether a write would work now.
  void check();
  /// Calls `block` after the answer has changed.
  [[nodiscard]] Token observe(std::function<void()> block) {
    return observers_.add(std::move(block));
  }

 private:
  BacklightWriter& writer_;
  std::function<std::optional<Backlight>()> find_;
  bool isGranted_ = true;
  Listeners<> observers_;
  QTimer recheck_;
  QObject context_;
};

}  // namespace valdrix::desktop
