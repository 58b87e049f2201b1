#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace valdrix::desktop {

/// One unfolded line of an iCalendar text: `NAME;PARAMETERS:VALUE`.
struct IcalContentLine {
  std::string_view name;
  std::string_view parameters;
  std::string_view value;

  /// Whether the name is `other`, whatever the case.
  [[nodiscard]] bool is(std::string_view other) const;
  /// The value of a parameter without its quotes; nothing when the line has no such parameter.
  [[nodiscard]] std::optional<std::string_view> parameter(std::string_view parameterName) const;
};

/// Whether both are the same, upper and lower case of ASCII being one.
[[nodiscard]] bool isSameWord(std::string_view one, std::string_view other);

/// The parts of a value that is a list, separated by commas.
class IcalList {
 public:
  explicit IcalList(std::string_view value) : rest_(value) {}

  /// The next part; nothing at the end.
  [[nodiscard]] std::optional<std::string_view> next();

 private:
  std::string_view rest_;
  bool isAtEnd_ = false;
};

/// Reads the lines of an iCalendar text one after the other (RFC 5545, 3.1), with LF as well as CR
/// LF. A line without a colon has an empty value.
class IcalContentLines {
 public:
  explicit IcalContentLines(std::string_view text);

  /// The next line that is not empty, valid until the next call; nothing at the end.
  [[nodiscard]] std::optional<IcalContentLine> next();

  /// Where the next line begins in the text.
  [[nodiscard]] std::size_t position() const { return position_; }

 private:
  [[nodiscard]] std::string_view nextPhysicalLine();
  [[nodiscard]] bool isFolded() const;

  std::string_view text_;
  std::size_t position_ = 0;
  std::string unfolded_;
};

}  // namespace valdrix::desktop
