#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "observation/Observed.h"
#include "observation/Token.h"
#include "platform/UserDefaults.h"

namespace valdrix {

/// The user's preferences as views read them: whoever reads one here while an `Observer` is
/// tracking is told when a stored value may have changed, whoever changed it. Each read asks the
/// store. Main thread only.
class BoundPreferences {
 public:
  /// `userDefaults` must outlive it.
  explicit BoundPreferences(platform::UserDefaults& userDefaults);

  [[nodiscard]] bool boolForKey(std::string_view key) const;
  [[nodiscard]] std::int64_t integerForKey(std::string_view key) const;
  [[nodiscard]] double doubleForKey(std::string_view key) const;
  /// The empty string when there is none.
  [[nodiscard]] std::string stringForKey(std::string_view key) const;

  /// Stores a value. The readers are told before this returns.
  void set(std::string_view key, platform::UserDefaults::Value value) const;

 private:
  [[nodiscard]] const platform::UserDefaults& readStore() const;
  void storeChanged() const;

  platform::UserDefaults& userDefaults_;
  /// How often the store changed, which is not a part of this object's value.
  mutable Observed<std::uint64_t> changes_{0U};
  Token observer_;
};

}  // namespace valdrix
