#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <optional>
#include <utility>

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

  /// The new target, from `now` on. Whether a movement started.
  bool set(const Values& target, const Transaction& transaction, double now) {
    if (target == target_) return false;
    if (!transaction.animation) {
      jump(target);
      return false;
    }
    const bool wasMoving = animation_ && now < end_;
    Values offset{};
    Values velocity{};
    for (std::size_t i = 0; i < N; ++i) {
      const auto [position, speed] = wasMoving ? motion(i, now) : Spring::Motion{0, 0};
      offset[i] = target_[i] + position - target[i];
      velocity[i] = speed;
    }
    target_ = target;
    offset_ = offset;
    velocity_ = velocity;
    animation_ = transaction.animation;
    start_ = now;
    end_ = now + duration();
    return now < end_;
  }

  /// Takes `target` at once, without a movement.
  void jump(const Values& target) {
    target_ = values_ = target;
    animation_.reset();
  }

  /// Moves the values on to `time`. Whether they changed.
  bool advance(double time) {
    if (!animation_) return false;
    const bool hasArrived = time >= end_;
    Values values = target_;
    for (std::size_t i = 0; i < N && !hasArrived; ++i) values[i] += motion(i, time).position;
    if (hasArrived) animation_.reset();
    return std::exchange(values_, values) != values;
  }

  /// The values at the time of the latest `advance`.
  [[nodiscard]] const Values& values() const { return values_; }
  [[nodiscard]] const Values& target() const { return target_; }
  [[nodiscard]] bool isMoving() const { return animation_.has_value(); }

 private:
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
  Values values_{};
  Values target_{};
  Values offset_{};
  Values velocity_{};
  std::optional<Animation> animation_;
  double start_ = 0;
  double end_ = 0;
};

}  // namespace valdrix::view
