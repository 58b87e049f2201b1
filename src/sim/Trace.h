#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "view/Geometry.h"

namespace valdrix::sim {

/// The record of everything observable that happened on the simulated desktop, in order, each line
/// with the time of the manual clock.
class Trace {
 public:
  struct Line {
    double time;
    std::string text;
  };

  /// Where the time of a line comes from. Set by the manual run loop.
  void setClock(std::function<double()> now) { now_ = std::move(now); }
  void add(std::string_view text) { lines_.push_back({now_ ? now_() : 0, std::string(text)}); }
  [[nodiscard]] const std::vector<Line>& lines() const { return lines_; }

 private:
  std::function<double()> now_;
  std::vector<Line> lines_;
};

/// A number as traces show it: up to six decimals, without trailing zeros; a huge one with an
/// exponent.
[[nodiscard]] std::string formatNumber(double value);

/// A rectangle as traces show it: origin and size, such as "396,-18 720x1000".
[[nodiscard]] std::string formatRect(const view::Rect& rect);

}  // namespace valdrix::sim
