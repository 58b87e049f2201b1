#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace valdrix::desktop {

/// A place where a desktop keeps settings as texts under names. The service behind it may be absent
/// or hang: each call ends by calling its block once, on the main thread and never before it has
/// returned, or not at all once the store has ended.
class SettingStore {
 public:
  /// A setting's value; none when it is not set and the desktop's default counts.
  using Value = std::optional<std::string>;
  /// None when the setting could not be read: the store does not answer or does not know the name.
  using OnRead = std::function<void(std::optional<Value>)>;
  /// Whether the store has the value now.
  using OnWritten = std::function<void(bool isWritten)>;

  /// None when the store does not answer.
  using OnFound = std::function<void(std::optional<std::vector<std::string>>)>;

  virtual ~SettingStore() = default;
  /// As files name it.
  [[nodiscard]] virtual std::string name() const = 0;
  /// The settings that `pattern` stands for where names vary from user to user. A store without
  /// patterns knows names alone, and may answer before it returns.
  // NOLINTNEXTLINE(performance-unnecessary-value-param): others keep it.
  virtual void find(const std::string& pattern, OnFound done) { done({{pattern}}); }
  virtual void read(const std::string& setting, OnRead done) = 0;
  virtual void write(const std::string& setting, const Value& value, OnWritten done) = 0;
};

}  // namespace valdrix::desktop
