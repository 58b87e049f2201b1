#pragma once

#include <set>
#include <string>
#include <string_view>

namespace valdrix {

/// The set of calendars whose events are not shown, as it is kept in the preferences: identifiers
/// joined with commas, ascending by code point, without spaces, quotes or escapes.
class HiddenCalendars {
 public:
  HiddenCalendars() = default;

  /// Reads a stored list. Empty pieces are dropped and duplicates collapse; a space is part of an
  /// identifier.
  [[nodiscard]] static HiddenCalendars parse(std::string_view list);
  /// The list to store; empty when nothing is hidden.
  [[nodiscard]] std::string serialized() const;

  [[nodiscard]] bool contains(std::string_view calendarID) const;
  /// Hides or shows one calendar; hiding a hidden one or showing a shown one changes nothing.
  void setHidden(std::string_view calendarID, bool isHidden);

  bool operator==(const HiddenCalendars&) const = default;

 private:
  // UTF-8 sorts by code point when it is compared byte by byte, as std::string does.
  std::set<std::string, std::less<>> ids_;
};

}  // namespace valdrix
