#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace valdrix::desktop {

/// The text of an INI file, of which one group is read and changed and all else is kept byte for
/// byte: comments, blank lines, other groups, unknown keys, their order.
///
/// A line is blank, a comment (`#` or `;` first), a `[group]` or `key=value`; anything else is
/// unreadable. Lines before the first group are of the group `General`. Spaces around keys and
/// values don't count. In a value, `\\ \n \r \t \s \0` stand for a backslash, line feed, carriage
/// return, tab, space and NUL; any other backslash is itself. Commas, quotes and bytes beyond ASCII
/// are nothing special. Of several lines with one key the last counts.
class IniDocument {
 public:
  using Values = std::map<std::string, std::string, std::less<>>;
  static constexpr std::string_view generalGroup = "General";

  IniDocument() = default;
  explicit IniDocument(std::string_view text, std::string group = std::string(generalGroup));

  [[nodiscard]] std::string text() const;
  /// The keys and values of the group.
  [[nodiscard]] const Values& values() const { return values_; }
  /// Whether `key` can stand in a file: ASCII letters, digits, `-`, `_` and `.`.
  [[nodiscard]] static bool isKey(std::string_view key);
  /// Changes the line that counts for `key`, or adds one. `key` must be a valid one.
  void set(std::string_view key, std::string_view value);

  [[nodiscard]] bool hasUnreadableLines() const { return hasUnreadableLines_; }
  void removeUnreadableLines();

 private:
  void index();

  std::string group_{generalGroup};
  std::vector<std::string> lines_;
  Values values_;
  std::map<std::string, std::size_t, std::less<>> lineOfKey_;
  std::size_t groupEnd_ = 0;  ///< where a new line of the group goes; 0 when there is no group
  bool hasUnreadableLines_ = false;
};

}  // namespace valdrix::desktop
