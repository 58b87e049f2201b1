#include "view/Spring.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace valdrix::view {

namespace {

/// Below this distance from 1 a damping fraction counts as critical, where the other two formulas
/// would divide by almost nothing.
constexpr double criticalBand = 1e-7;

}  // namespace

Spring::Motion Spring::motion(double position, double velocity, double time) const {
  if (time <= 0) return {position, velocity};
  const double omega = 2 * std::numbers::pi / response;
  const double zeta = dampingFraction;
  const double decay = zeta * omega;
  if (std::abs(zeta - 1) < criticalBand) {
    const double e = std::exp(-omega * time);
    const double slope = velocity + omega * position;
    return {(position + slope * time) * e, (velocity - omega * slope * time) * e};
  }
  if (zeta < 1) {
    const double damped = omega * std::sqrt(1 - zeta * zeta);
    const double b = (velocity + decay * position) / damped;
    const double e = std::exp(-decay * time);
    const double c = std::cos(damped * time);
    const double s = std::sin(damped * time);
    return {e * (position * c + b * s),
            e * ((b * damped - decay * position) * c - (position * damped + decay * b) * s)};
  }
  const double spread = omega * std::sqrt(zeta * zeta - 1);
  const double slow = -decay + spread;
  const double fast = -decay - spread;
  const double fastPart = (slow * position - velocity) / (slow - fast);
  const double slowPart = position - fastPart;
  const double slowNow = slowPart * std::exp(slow * time);
  const double fastNow = fastPart * std::exp(fast * time);
  return {slowNow + fastNow, slow * slowNow + fast * fastNow};
}

double Spring::settlingTime(double position, double velocity, double tolerance) const {
  const double omega = 2 * std::numbers::pi / response;
  // The amplitude never exceeds this envelope, which shrinks with the slowest of the spring's
  // rates.
  const double rate =
      dampingFraction <= 1
          ? dampingFraction * omega
          : omega / (dampingFraction + std::sqrt(dampingFraction * dampingFraction - 1));
  const double regularity =
      std::max(0.05, std::sqrt(std::abs(1 - dampingFraction * dampingFraction)));
  const double amplitude =
      (std::abs(position) +
       (std::abs(velocity) / omega + std::abs(position) * dampingFraction) / regularity);
  if (amplitude <= tolerance) return 0;
  return std::log(amplitude / tolerance) / rate;
}

}  // namespace valdrix::view
