#include "bench/desktop/Samples.h"

#include <algorithm>
#include <cmath>

namespace valdrix::bench {

double Samples::quantile(double share) const {
  if (values_.empty()) return 0;
  auto sorted = values_;
  std::ranges::sort(sorted);
  const auto rank = std::ceil(share * static_cast<double>(sorted.size()));
  return sorted[static_cast<std::size_t>(std::max(1.0, rank)) - 1];
}

}  // namespace valdrix::bench
