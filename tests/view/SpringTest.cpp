#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <numbers>

#include "view/Animated.h"
#include "view/Spring.h"

namespace valdrix::view {
namespace {

class SpringRegime : public testing::TestWithParam<double> {
 protected:
  const Spring spring{.response = 0.42, .dampingFraction = GetParam()};
  static constexpr double position = -380;
  static constexpr double velocity = 900;
};

TEST_P(SpringRegime, ClosedFormFollowsTheEquationOfMotion) {
  const double omega = 2 * std::numbers::pi / spring.response;
  const double stiffness = omega * omega;
  const double damping = 4 * std::numbers::pi * spring.dampingFraction / spring.response;
  const double step = 1e-5;
  double x = position;
  double v = velocity;
  double time = 0;
  for (int sample = 1; sample <= 10; ++sample) {
    for (; time < sample * 0.05; time += step) {
      const double half = v + step / 2 * (-stiffness * x - damping * v);
      const double middle = x + step / 2 * v;
      x += step * half;
      v += step * (-stiffness * middle - damping * half);
    }
    const auto motion = spring.motion(position, velocity, time);
    EXPECT_NEAR(motion.position, x, 0.01) << time;
    EXPECT_NEAR(motion.velocity, v, 0.2) << time;
  }
}

TEST_P(SpringRegime, StaysWithinToleranceOnceSettled) {
  for (const double tolerance : {0.5, 0.05, 0.001}) {
    const double settled = spring.settlingTime(position, velocity, tolerance);
    EXPECT_LT(settled,
              5 * spring.response / std::min(spring.dampingFraction, 1 / spring.dampingFraction));
    for (double time = settled; time < settled + 2; time += 0.001)
      ASSERT_LE(std::abs(spring.motion(position, velocity, time).position), tolerance) << time;
  }
}

INSTANTIATE_TEST_SUITE_P(Dampings, SpringRegime,
                         testing::Values(0.1, 0.48, 0.52, 0.9999, 1.0, 1.0001, 1.01, 3.0),
                         [](const auto& test) {
                           return "x" + std::to_string(static_cast<int>(test.param * 10000));
                         });

constexpr Spring show{.response = 0.42, .dampingFraction = 0.48};
const Transaction animated{show};

TEST(Animated, ARetargetedSpringGoesOnFromWhereItIsAsFastAsItIs) {
  Animated<1> value(0.05);
  value.jump({200});
  value.advance(0);
  value.set({580}, animated, 0);
  const auto at = [](Animated<1> copy, double time) {
    copy.advance(time);
    return copy.values()[0];
  };
  const double turn = 0.1;
  const double step = 1e-6;
  const double before = at(value, turn);
  const double slopeBefore = (at(value, turn) - at(value, turn - step)) / step;
  ASSERT_GT(slopeBefore, 500);
  ASSERT_TRUE(value.set({200}, animated, turn));
  EXPECT_NEAR(at(value, turn), before, 1e-9);
  EXPECT_NEAR((at(value, turn + step) - at(value, turn)) / step, slopeBefore, 1);
}

TEST(Animated, ArrivesAtExactlyTheTarget) {
  for (const Animation animation : {Animation{show}, Animation{EaseOut{0.12}}}) {
    Animated<1> value(0.05);
    value.advance(0);
    ASSERT_TRUE(value.set({1.0 / 3}, Transaction{animation}, 5));
    value.advance(5.05);
    EXPECT_TRUE(value.isMoving());
    value.advance(60);
    EXPECT_FALSE(value.isMoving());
    EXPECT_EQ(value.values()[0], 1.0 / 3);
    EXPECT_FALSE(value.advance(61));
  }
}

}  // namespace
}  // namespace valdrix::view
