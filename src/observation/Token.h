#pragma once

#include <functional>
#include <utility>

namespace valdrix {

/// A registration (a timer, an observer, a listener) that ends with its token: destroying or
/// resetting the token unregisters. Moving hands the registration on. An empty token stands for no
/// registration.
class Token {
 public:
  Token() = default;
  /// `unregister` runs once, on the thread that ends the token.
  explicit Token(std::function<void()> unregister) : unregister_(std::move(unregister)) {}
  Token(Token&& other) noexcept : unregister_(std::exchange(other.unregister_, nullptr)) {}
  Token& operator=(Token&& other) noexcept {
    if (this != &other) {
      reset();
      unregister_ = std::exchange(other.unregister_, nullptr);
    }
    return *this;
  }
  Token(const Token&) = delete;
  Token& operator=(const Token&) = delete;
  ~Token() { reset(); }

  /// Ends the registration now; does nothing when there is none.
  void reset() {
    if (auto unregister = std::exchange(unregister_, nullptr)) unregister();
  }

  /// Whether this token holds a registration.
  explicit operator bool() const { return static_cast<bool>(unregister_); }

 private:
  std::function<void()> unregister_;
};

}  // namespace valdrix
