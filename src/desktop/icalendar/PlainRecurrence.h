#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

#include "desktop/icalendar/RecurrenceWalk.h"

struct icalrecurrencetype;

namespace valdrix::desktop {

/// The rules that nearly all recurring events have: every so many days, weeks on some weekdays,
/// months or years on one day. It jumps to the range in no time, where libical's iterator needs ten
/// to a hundred microseconds: a quarter of all files have such a rule.
class PlainRecurrence {
 public:
  /// Nothing when the rule is of another kind.
  [[nodiscard]] static std::optional<PlainRecurrence> from(const icalrecurrencetype& rule);

  /// Offers the occurrences in `range` of an event that starts at `start`, none before it.
  WalkEnd walk(WallTime start, WallRange range, WorkBudget& budget,
               const OccurrenceTaker& take) const;

 private:
  enum class Step : std::uint8_t { days, weeks, months };

  [[nodiscard]] static std::optional<PlainRecurrence> byDayOrWeek(const icalrecurrencetype& rule);
  [[nodiscard]] static std::optional<PlainRecurrence> byMonth(const icalrecurrencetype& rule);
  WalkEnd walkDays(WallTime start, WallRange range, WorkBudget& budget,
                   const OccurrenceTaker& take) const;
  WalkEnd walkWeeks(WallTime start, WallRange range, WorkBudget& budget,
                    const OccurrenceTaker& take) const;
  WalkEnd walkMonths(WallTime start, WallRange range, WorkBudget& budget,
                     const OccurrenceTaker& take) const;
  [[nodiscard]] std::optional<std::chrono::local_days> dayIn(std::chrono::year_month month,
                                                             std::chrono::day startDay) const;

  Step step_ = Step::days;
  std::int32_t interval_ = 1;
  std::uint8_t weekdays_ = 0;  ///< of a week's days, bit 0 for Sunday; 0 for the start's
  std::uint8_t weekStart_ = 1;
  std::uint8_t month_ = 0;   ///< of each year; 0 for the start's
  std::int8_t day_ = 0;      ///< of the month, -1 for the last; 0 for the start's
  std::int8_t ordinal_ = 0;  ///< which `weekday_` of the month, -1 for the last; 0 for `day_`
  std::uint8_t weekday_ = 0;
};

}  // namespace valdrix::desktop
