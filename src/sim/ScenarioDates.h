#pragma once

#include <chrono>
#include <variant>

#include "sim/ScenarioWords.h"
#include "sim/SimUserCalendar.h"

namespace valdrix::sim {

/// A day as scenarios name it: a date, or a number of days from the day on which it is used.
using ScenarioDay = std::variant<std::chrono::local_days, std::chrono::days>;

// All take words, and throw a `ScenarioError` when those are not what was asked for.

/// "yesterday", "today", "tomorrow", or a date such as 2026-11-18.
[[nodiscard]] ScenarioDay takeDay(ScenarioWords& words);
/// A date such as 2026-11-18.
[[nodiscard]] std::chrono::local_days takeDate(ScenarioWords& words);
/// A time such as 09:00, since midnight.
[[nodiscard]] std::chrono::minutes takeTimeOfDay(ScenarioWords& words);
/// A distance from UTC such as +01:00.
[[nodiscard]] std::chrono::minutes takeOffset(ScenarioWords& words);

/// Which day that is now.
[[nodiscard]] std::chrono::local_days resolve(const ScenarioDay& day,
                                              const SimUserCalendar& calendar);

}  // namespace valdrix::sim
