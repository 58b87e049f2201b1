#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <optional>

#include "view/Spring.h"
#include "view/Transaction.h"

namespace valdrix::view {

/// `N` numbers that move together to their targets as the transaction of each change says. A change
/// on the way keeps a spring's velocity; one outside an animation is there at once.
template <std::size_t N>
class Animated {
 public:
  using Values = std::array<double, N>;

  /// `tolerance`: the distance from the target, in the values' own unit, that nobody can see.
  explicit Animated(double tolerance) : tolerance_(tolerance) {}

  /// The new target. Whether a movement started.
  bool set(const Values& target, const Transaction& transaction, double now) {
    if (target == target_) return false;
    if (!transaction.animation) {
      jump(target);
      return false;
    }
    const Values position = value(now);
    const Values velocity = velocityAt(now);
    target_ = target;
    animation_ = transaction.animation;
    start_ = now;
    for (std::size_t i = 0; i < N; ++i) {
      offset_[i] = position[i] - target[i];
      velocity_[i] = velocity[i];
    }
    end_ = now + duration();
    return true;
  }

  /// Takes `target` at once, without a movement.
  void jump(const Values& target) {
    target_ = target;
    animation_.reset();
  }

  [[nodiscard]] Values value(double now) const {
    if (!isMoving(now)) return target_;
    Values values = target_;
    for (std::size_t i = 0; i < N; ++i) values[i] += motion(i, now).position;
    return values;
  }
  [[nodiscard]] const Values& target() const { return target_; }
  [[nodiscard]] bool isMoving(double now) const { return animation_ && now < end_; }

 private:
  [[nodiscard]] Values velocityAt(double now) const {
    Values velocities{};
    if (isMoving(now))
      for (std::size_t i = 0; i < N; ++i) velocities[i] = motion(i, now).velocity;
    return velocities;
  }

  [[nodiscard]] Spring::Motion motion(std::size_t i, double now) const {
    if (const auto* spring = std::get_if<Spring>(&*animation_))
      return spring->motion(offset_[i], velocity_[i], now - start_);
    // Cubic ease-out: what is left shrinks as the third power of the remaining time.
    const double length = std::get<EaseOut>(*animation_).duration;
    const double left = std::clamp(1 - (now - start_) / length, 0.0, 1.0);
    return {offset_[i] * left * left * left, -3 * offset_[i] * left * left / length};
  }

  [[nodiscard]] double duration() const {
    if (const auto* ease = std::get_if<EaseOut>(&*animation_)) return ease->duration;
    const auto& spring = std::get<Spring>(*animation_);
    double longest = 0;
    for (std::size_t i = 0; i < N; ++i)
      longest = std::max(longest, spring.settlingTime(offset_[i], velocity_[i], tolerance_));
    return longest;
  }

  double tolerance_;
  Values target_{};
  Values offset_{};
  Values velocity_{};
  std::optional<Animation> animation_;
  double start_ = 0;
  double end_ = 0;
};

}  // namespace valdrix::view
