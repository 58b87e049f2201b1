#include "sim/Trace.h"

#include <array>
#include <cmath>
#include <cstdio>

namespace valdrix::sim {

namespace {

/// From here on a number is written with an exponent.
constexpr double longestWritten = 1e15;

}  // namespace

std::string formatNumber(double value) {
  std::array<char, 64> buffer{};
  const bool isPlain = std::abs(value) < longestWritten;
  std::snprintf(buffer.data(), buffer.size(), isPlain ? "%.6f" : "%g", value);
  std::string text = buffer.data();
  if (isPlain) {
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') text.pop_back();
  }
  return text == "-0" ? "0" : text;
}

std::string formatRect(const view::Rect& rect) {
  return formatNumber(rect.x) + "," + formatNumber(rect.y) + " " + formatNumber(rect.width) + "x" +
         formatNumber(rect.height);
}

}  // namespace valdrix::sim
