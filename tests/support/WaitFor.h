#pragma once

#include <functional>

namespace valdrix::tests {

/// Runs the event loop until `condition` holds, for `milliseconds` at most. Whether it came to
/// hold. Needs a QCoreApplication.
[[nodiscard]] bool waitFor(const std::function<bool()>& condition, int milliseconds = 10000);

}  // namespace valdrix::tests
