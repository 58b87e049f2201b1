#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace valdrix::platform {

using DisplayID = std::uint32_t;

/// The displays as pieces of hardware. Main thread only.
class Displays {
 public:
  virtual ~Displays() = default;

  /// The displays in use, or nothing when the list cannot be had. IDs are never 0.
  [[nodiscard]] virtual std::optional<std::vector<DisplayID>> getActiveDisplayList() const = 0;
  /// Whether the display is part of the machine.
  [[nodiscard]] virtual bool isBuiltin(DisplayID display) const = 0;
};

}  // namespace valdrix::platform
