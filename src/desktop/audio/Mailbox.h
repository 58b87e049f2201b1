#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <utility>

namespace valdrix::desktop {

/// Hands the latest of a row of values to another thread; an unread one gives way to a newer one.
template <class T>
class Mailbox {
 public:
  /// Puts `value` in. Whether the box was empty, so that the reader has to be told.
  bool put(T value) {
    const std::lock_guard lock(mutex_);
    const bool wasEmpty = !value_.has_value();
    value_ = std::move(value);
    filled_.notify_one();
    return wasEmpty;
  }
  /// Empties the box; nothing when it is empty.
  [[nodiscard]] std::optional<T> take() {
    const std::lock_guard lock(mutex_);
    return std::exchange(value_, std::nullopt);
  }
  /// The same, waiting for a value up to `bound`.
  [[nodiscard]] std::optional<T> waitAndTake(std::chrono::milliseconds bound) {
    std::unique_lock lock(mutex_);
    filled_.wait_for(lock, bound, [&] { return value_.has_value(); });
    return std::exchange(value_, std::nullopt);
  }

 private:
  std::mutex mutex_;
  std::condition_variable filled_;
  std::optional<T> value_;
};

}  // namespace valdrix::desktop
