#pragma once

#include <map>

#include "platform/UserDefaults.h"

namespace valdrix::platform {

/// What every store that keeps its values as text has in common: the layer of registered defaults,
/// and how a text reads as each type, so that all stores agree on odd values.
///
/// A Boolean is true, yes, on or 1, or false, no, off or 0, in any case. An integer is decimal. A
/// double is decimal with a point, whatever the locale, or inf or nan. Spaces around these don't
/// count. Every text is a string.
class TextUserDefaults : public UserDefaults {
 public:
  void registerDefaults(const std::vector<std::pair<std::string, Value>>& defaults) override;
  [[nodiscard]] bool boolForKey(std::string_view key) const override;
  [[nodiscard]] std::int64_t integerForKey(std::string_view key) const override;
  [[nodiscard]] double doubleForKey(std::string_view key) const override;
  [[nodiscard]] std::optional<std::string> stringForKey(std::string_view key) const override;

 protected:
  /// The text of a value as the user stored it. The view is good until the next call on this
  /// object.
  [[nodiscard]] virtual std::optional<std::string_view> storedText(std::string_view key) const = 0;
  /// The shortest text that reads as `value` again.
  [[nodiscard]] static std::string textOf(const Value& value);

 private:
  template <class T>
  std::optional<T> read(std::string_view key, std::optional<T> (*parse)(std::string_view)) const;

  std::map<std::string, std::string, std::less<>> registered_;
};

}  // namespace valdrix::platform
