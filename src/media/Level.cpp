#include "media/Level.h"

#include <algorithm>
#include <cmath>

namespace valdrix {

std::string percentText(float level) {
  const long percent = level < 1.0F ? std::lround(std::max(level, 0.0F) * 100.0F) : 100;
  return std::to_string(percent) + "%";
}

}  // namespace valdrix
