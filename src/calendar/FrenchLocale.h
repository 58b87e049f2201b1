#pragma once

#include <string>
#include <string_view>

#include "platform/UserCalendar.h"

namespace valdrix {

/// How dates and times read in French.
struct FrenchLocale {
  /// The locale of the texts, for whoever lays them out.
  std::string_view identifier = "fr_FR";

  /// Weekday, day and month: "mercredi 18 novembre".
  [[nodiscard]] std::string dayText(const platform::DateFields& fields) const;
  /// Hours and minutes, both with two digits: "09:05".
  [[nodiscard]] std::string timeText(const platform::DateFields& fields) const;
};

/// The one locale of every date and time that is shown.
inline constexpr FrenchLocale frenchLocale;

}  // namespace valdrix
