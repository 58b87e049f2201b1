#pragma once

#include <utility>

#include "observation/Observer.h"

namespace valdrix {

/// A value that tells its readers. Reading it while an `Observer` is tracking registers that
/// observer; writing a different value tells each registered observer once, writing an equal one
/// tells nobody. `T` needs `==`. Main thread only.
template <class T>
class Observed {
 public:
  Observed() = default;
  explicit Observed(T value) : value_(std::move(value)) {}

  /// The value; the tracking observer, if any, is registered as a reader.
  [[nodiscard]] const T& get() const {
    readers_.registerReader();
    return value_;
  }
  /// The value, read on nobody's behalf.
  [[nodiscard]] const T& peek() const { return value_; }
  operator const T&() const { return get(); }  // NOLINT(google-explicit-constructor)

  /// Stores `value` and tells the readers when it differs from the stored one.
  void set(T value) {
    if (value == value_) return;
    value_ = std::move(value);
    readers_.tell();
  }
  Observed& operator=(T value) {
    set(std::move(value));
    return *this;
  }

 private:
  T value_{};
  ObserverList readers_;
};

}  // namespace valdrix
