#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace valdrix::platform {

/// What this program was built as.
class Bundle {
 public:
  static constexpr std::string_view shortVersionString = "CFBundleShortVersionString";
  static constexpr std::string_view version = "CFBundleVersion";

  virtual ~Bundle() = default;

  /// The text under a key, or nothing.
  [[nodiscard]] virtual std::optional<std::string> infoText(std::string_view key) const = 0;
};

}  // namespace valdrix::platform
