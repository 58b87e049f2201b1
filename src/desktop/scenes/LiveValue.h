#pragma once

#include <functional>
#include <utility>

#include <QObject>

#include "observation/Observer.h"

namespace valdrix::desktop {

/// A description that is read, shown, and read again whenever a value that it came from has
/// changed: once in the next turn of the event loop, however many have. Main thread only.
template <class T>
class LiveValue {
 public:
  LiveValue(std::function<T()> read, std::function<void(const T& value)> show)
      : read_(std::move(read)), show_(std::move(show)), observer_([this] { refreshSoon(); }) {}

  /// Reads and shows it now.
  void refresh() {
    isPending_ = false;
    show_(observer_.track(read_));
  }

  /// Reads and shows it in the next turn.
  void refreshSoon() {
    if (std::exchange(isPending_, true)) return;
    QMetaObject::invokeMethod(
        &context_,
        [this] {
          if (isPending_) refresh();
        },
        Qt::QueuedConnection);
  }

 private:
  std::function<T()> read_;
  std::function<void(const T&)> show_;
  bool isPending_ = false;
  QObject context_;
  Observer observer_;
};

}  // namespace valdrix::desktop
