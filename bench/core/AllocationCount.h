#pragma once

#include <cstdint>

namespace valdrix::bench {

/// How often this process has asked for heap memory through `operator new` so far.
[[nodiscard]] std::uint64_t allocationCount();

}  // namespace valdrix::bench
