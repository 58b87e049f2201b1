#pragma once

#include <chrono>

namespace valdrix::platform {

/// A point in time on the wall clock.
using Instant = std::chrono::sys_time<std::chrono::milliseconds>;

}  // namespace valdrix::platform
