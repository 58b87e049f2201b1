#pragma once

#include <string>
#include <vector>

namespace valdrix::sim {

/// Both traces side by side, the expected one at the left, with a mark at each line that only one
/// of them has. Empty when they are equal.
[[nodiscard]] std::string traceDifference(const std::vector<std::string>& expected,
                                          const std::vector<std::string>& actual);

}  // namespace valdrix::sim
