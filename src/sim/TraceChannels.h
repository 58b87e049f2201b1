#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "sim/Trace.h"

namespace valdrix::sim {

/// Whether traces have lines of that channel, which is their first word.
[[nodiscard]] bool isTraceChannel(std::string_view word);

/// The lines of `trace` in these channels, or all when there are none, as "time text".
[[nodiscard]] std::vector<std::string> traceLines(const Trace& trace,
                                                  const std::vector<std::string>& channels);

}  // namespace valdrix::sim
