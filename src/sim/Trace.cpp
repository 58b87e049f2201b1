#include "sim/Trace.h"

#include <array>
#include <cstdio>

namespace valdrix::sim {

std::string formatNumber(double value) {
  std::array<char, 400> buffer{};
  std::snprintf(buffer.data(), buffer.size(), "%.6f", value);
  std::string text = buffer.data();
  if (text.find('.') != std::string::npos) {
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
