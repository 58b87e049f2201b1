#pragma once

#include <string_view>

namespace valdrix::platform {

/// The order that the user's language has for texts. Main thread only.
class Collator {
 public:
  virtual ~Collator() = default;

  /// Below 0 when `a` comes before `b`, above 0 when it comes after it, 0 when they differ in
  /// nothing but case. Both are UTF-8.
  [[nodiscard]] virtual int compareIgnoringCase(std::string_view a, std::string_view b) const = 0;
};

}  // namespace valdrix::platform
