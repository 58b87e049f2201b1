#pragma once

#include <variant>

namespace valdrix::view {

/// A damped spring of mass 1 by its response (the period of the undamped oscillation, in seconds,
/// above 0) and its damping as a fraction of critical damping. Stiffness is (2π / response)²,
/// damping 4π · fraction / response.
struct Spring {
  double response = 0.42;
  double dampingFraction = 0.48;
  bool operator==(const Spring&) const = default;

  struct Motion {
    double position;
    double velocity;
  };
  /// Where the spring is `time` seconds after leaving `position` with `velocity` (units a second)
  /// towards 0. Closed form of x″ + 2ζω x′ + ω² x = 0 in all three damping regimes, so a late or
  /// skipped frame does not change the curve.
  [[nodiscard]] Motion motion(double position, double velocity, double time) const;

  /// Seconds after which the spring stays within `tolerance` of 0.
  [[nodiscard]] double settlingTime(double position, double velocity, double tolerance) const;
};

/// A change that starts quickly and slows down to its end, `duration` seconds long.
struct EaseOut {
  double duration = 0.12;
  bool operator==(const EaseOut&) const = default;
};

using Animation = std::variant<Spring, EaseOut>;

}  // namespace valdrix::view
