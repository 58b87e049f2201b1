#pragma once

#include <chrono>
#include <mutex>
#include <optional>
#include <semaphore>
#include <utility>

namespace valdrix::desktop {

/// Hands the latest of a row of values to another thread; an unread one gives way to a newer one.
template <class T>
class Mailbox {
 public:
  /// Puts `value` in. Whether the box was empty, so that the reader has to be told.
  bool put(T value) {
    const std::lock_guard lock(mutex_);
    if (!std::exchange(hasFirst_, true)) first_.release();
    return !std::exchange(value_, std::move(value)).has_value();
  }
  /// Empties the box; nothing when it is empty.
  [[nodiscard]] std::optional<T> take() {
    const std::lock_guard lock(mutex_);
    return std::exchange(value_, std::nullopt);
  }
  /// Waits until anything was ever put in, up to `bound`. For one waiter, once.
  void waitForFirst(std::chrono::milliseconds bound) {
    static_cast<void>(first_.try_acquire_for(bound));
  }

 private:
  std::mutex mutex_;
  std::optional<T> value_;
  bool hasFirst_ = false;
  std::binary_semaphore first_{0};
};

}  // namespace valdrix::desktop
