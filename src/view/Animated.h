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
/// on the way keeps a spring's velocity; one outside an animation is there at once. What no frame
/// has shown yet does not move, and what jumped since the latest frame moves after all when an
/// animated change follows: the jump was never seen.
template <std::size_t N>
class Animated {
 public:
  using Values = std::array<double, N>;

  /// `tolerance`: the distance from the target, in the values' own unit, that nobody can see.
  explicit Animated(double tolerance) : tolerance_(tolerance) {}

  /// The new target, from `now` on. Whether a movement started.
  bool set(const Values& target, const Transaction& transaction, double now) {
    if (!transaction.animation || !hasBeenShown_) {
      if (target == course_.target) return false;
      if (!shown_) shown_ = course_;
      course_ = Course{target, target};
      return false;
    }
    if (shown_) course_ = *std::exchange(shown_, std::nullopt);
    if (target == course_.target) return false;
    turn(target, *transaction.animation, now);
    return now < course_.end;
  }

  /// Takes `target` at once, whatever follows.
  void jump(const Values& target) {
    shown_.reset();
    course_ = Course{target, target};
  }

  /// Moves the values on to `time`. Whether they changed.
  bool advance(double time) {
    hasBeenShown_ = true;
    shown_.reset();
    if (!course_.animation) return false;
    const bool hasArrived = time >= course_.end;
    Values values = course_.target;
    for (std::size_t i = 0; i < N && !hasArrived; ++i) values[i] += motion(i, time).position;
    if (hasArrived) course_.animation.reset();
    return std::exchange(course_.values, values) != values;
  }

  /// The values at the time of the latest `advance`.
  [[nodiscard]] const Values& values() const { return course_.values; }
  [[nodiscard]] const Values& target() const { return course_.target; }
  [[nodiscard]] bool isMoving() const { return course_.animation.has_value(); }

 private:
  struct Course {
    Values values{};
    Values target{};
    Values offset{};
    Values velocity{};
    std::optional<Animation> animation{};
    double start = 0;
    double end = 0;
  };

  void turn(const Values& target, const Animation& animation, double now) {
    const bool wasMoving = course_.animation && now < course_.end;
    Course next{course_.values, target};
    for (std::size_t i = 0; i < N; ++i) {
      const auto [position, speed] = wasMoving ? motion(i, now) : Spring::Motion{0, 0};
      next.offset[i] = course_.target[i] + position - target[i];
      next.velocity[i] = speed;
    }
    next.animation = animation;
    next.start = now;
    course_ = next;
    course_.end = now + duration();
  }

  [[nodiscard]] Spring::Motion motion(std::size_t i, double now) const {
    const double time = now - course_.start;
    if (const auto* spring = std::get_if<Spring>(&*course_.animation))
      return spring->motion(course_.offset[i], course_.velocity[i], time);
    // Cubic ease-out: what is left shrinks as the third power of the remaining time.
    const double length = std::get<EaseOut>(*course_.animation).duration;
    const double left = std::clamp(1 - time / length, 0.0, 1.0);
    return {course_.offset[i] * left * left * left, -3 * course_.offset[i] * left * left / length};
  }

  [[nodiscard]] double duration() const {
    if (const auto* ease = std::get_if<EaseOut>(&*course_.animation)) return ease->duration;
    const auto& spring = std::get<Spring>(*course_.animation);
    double longest = 0;
    for (std::size_t i = 0; i < N; ++i)
      longest = std::max(longest,
                         spring.settlingTime(course_.offset[i], course_.velocity[i], tolerance_));
    return longest;
  }

  double tolerance_;
  Course course_;
  /// The course as of the latest frame, while there was a jump since.
  std::optional<Course> shown_;
  bool hasBeenShown_ = false;
};

}  // namespace valdrix::view
