#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace valdrix::desktop {

/// Who has the volume and brightness keys, by their codes. Empty lists where keys cannot be
/// reserved.
struct MediaKeyReport {
  /// What reserves the keys, as the status names it.
  std::string backend;
  std::vector<std::uint32_t> held;      ///< by this program
  std::vector<std::uint32_t> missing;   ///< by another one
  std::vector<std::uint32_t> released;  ///< left to the desktop, as the preferences say
  std::vector<std::uint32_t> absent;    ///< on no keyboard
  bool operator==(const MediaKeyReport&) const = default;

  [[nodiscard]] bool isEmpty() const {
    return held.empty() && missing.empty() && released.empty() && absent.empty();
  }
};

}  // namespace valdrix::desktop
