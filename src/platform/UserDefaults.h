#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "observation/Token.h"

namespace valdrix::platform {

/// The user's preferences: a flat, persistent store of keys and values with a layer of registered
/// defaults below it. Main thread only.
///
/// A stored value that does not read as the wanted type counts as missing, so that the registered
/// default stands in. A store that cannot be read or written behaves as an empty one for this run;
/// a damaged one is set aside under another name and never overwritten.
class UserDefaults {
 public:
  using Value = std::variant<bool, std::int64_t, double, std::string>;

  virtual ~UserDefaults() = default;

  /// Installs fallback values below the user's own, in the given order. Nothing is written.
  virtual void registerDefaults(const std::vector<std::pair<std::string, Value>>& defaults) = 0;

  /// The stored or registered value; false when there is neither.
  [[nodiscard]] virtual bool boolForKey(std::string_view key) const = 0;
  /// The stored or registered value; 0 when there is neither. A number out of range counts as
  /// missing.
  [[nodiscard]] virtual std::int64_t integerForKey(std::string_view key) const = 0;
  /// The stored or registered value, which may be any double, infinities and not-a-number included;
  /// 0 when there is neither.
  [[nodiscard]] virtual double doubleForKey(std::string_view key) const = 0;
  /// The stored or registered value, or nothing.
  [[nodiscard]] virtual std::optional<std::string> stringForKey(std::string_view key) const = 0;

  /// Stores `value` for the user. Reads see it at once; on a desktop it is on disk shortly after,
  /// whole or not at all, and nobody waits for that.
  virtual void set(std::string_view key, Value value) = 0;

  /// Calls `block` after the stored values may have changed, whoever changed them.
  [[nodiscard]] virtual Token observeChanges(std::function<void()> block) = 0;
};

}  // namespace valdrix::platform
