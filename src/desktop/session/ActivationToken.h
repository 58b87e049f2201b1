#pragma once

#include <functional>
#include <string>
#include <utility>

namespace valdrix::desktop {

/// What the desktop gives a program that the user has just started, so that a window of it may come
/// to the front: the token of xdg-activation or the identifier of X11's startup notification. It
/// may be handed to the process that is to show the window.
class ActivationToken {
 public:
  explicit ActivationToken(std::string text) : text_(std::move(text)) {}

  /// Takes it from the environment, so that no program that this one starts finds it; that of X11
  /// stays for Qt, which tells the desktop by it that the start is complete. Empty without one. To
  /// be called before there is a QApplication.
  [[nodiscard]] static ActivationToken take();

  [[nodiscard]] const std::string& text() const { return text_; }
  /// Runs `block`, in which a window may be brought to the front by the token.
  void during(const std::function<void()>& block) const;
  /// Whether such a block runs.
  [[nodiscard]] static bool isAtHand();

 private:
  std::string text_;
};

}  // namespace valdrix::desktop
