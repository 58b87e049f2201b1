#pragma once

#include <functional>
#include <string_view>

#include "observation/Observed.h"
#include "observation/Token.h"
#include "platform/RunLoop.h"
#include "platform/UserDefaults.h"

namespace valdrix {

/// One of the panel's level indicators: whether the user wants it, whether it is up, and for how
/// long. Main thread only.
class LevelIndicator {
 public:
  /// `isVisible` is its flag in the model, `preference` the key that switches it on and off. All
  /// must outlive it.
  LevelIndicator(platform::RunLoop& runLoop, const platform::UserDefaults& userDefaults,
                 Observed<bool>& isVisible, std::string_view preference);

  [[nodiscard]] bool isEnabled() const;

  /// Comes up with what `setLevel` writes, in place of `other` if that is up, in one movement.
  void show(LevelIndicator& other, const std::function<void()>& setLevel);
  /// Has `block` called once the indicator has been up for as long as the user wants, from now on.
  void scheduleDismiss(std::function<void()> block);
  void cancelDismiss() { dismissTimer_.reset(); }
  /// Goes in a movement of its own.
  void hide();
  /// Goes in the movement of whatever takes its place.
  void drop();

 private:
  platform::RunLoop& runLoop_;
  const platform::UserDefaults& userDefaults_;
  Observed<bool>& isVisible_;
  std::string_view preference_;
  Token dismissTimer_;
};

}  // namespace valdrix
