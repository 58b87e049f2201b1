#include "desktop/icalendar/SubdailyRecurrence.h"

#include <algorithm>

#include "desktop/icalendar/IcalRuleParts.h"

namespace valdrix::desktop {

using namespace std::chrono_literals;
using std::chrono::days;
using std::chrono::floor;
using std::chrono::local_days;
using std::chrono::seconds;

namespace {

template <std::size_t size>
bool fill(std::bitset<size>& set, std::span<const short> values) {
  for (const short value : values) {
    if (value < 0 || static_cast<std::size_t>(value) >= size) return false;
    set.set(static_cast<std::size_t>(value));
  }
  return true;
}

/// Negative values go to the second half.
template <std::size_t size>
bool fillBothWays(std::bitset<size>& set, std::span<const short> values) {
  constexpr int half = size / 2;
  for (const short value : values) {
    if (value == 0 || std::abs(int{value}) >= half) return false;
    set.set(static_cast<std::size_t>(value > 0 ? value : half - value));
  }
  return true;
}

bool fillWeekdays(std::bitset<7>& set, std::span<const short> values) {
  for (const short value : values) {
    if (ordinalOf(value) != 0) return false;
    set.set(weekdayOf(value));
  }
  return true;
}

template <std::size_t size>
bool allows(const std::bitset<size>& set, std::int64_t value) {
  return set.none() || set.test(static_cast<std::size_t>(value));
}

/// Whether the set has day `number` of `count`, counted from either end.
template <std::size_t size>
bool allowsBothWays(const std::bitset<size>& set, std::int64_t number, std::int64_t count) {
  const auto fromEnd =
      static_cast<std::size_t>(size / 2 + static_cast<std::size_t>(count - number) + 1);
  return set.none() || set.test(static_cast<std::size_t>(number)) || set.test(fromEnd);
}

}  // namespace

std::optional<SubdailyRecurrence> SubdailyRecurrence::from(const icalrecurrencetype& rule) {
  SubdailyRecurrence recurrence;
  switch (rule.freq) {
    case ICAL_HOURLY_RECURRENCE:
      recurrence.unit_ = 1h;
      break;
    case ICAL_MINUTELY_RECURRENCE:
      recurrence.unit_ = 1min;
      break;
    case ICAL_SECONDLY_RECURRENCE:
      recurrence.unit_ = 1s;
      break;
    default:
      return std::nullopt;
  }
  recurrence.interval_ = rule.interval;
  const bool isUnderstood = rule.interval >= 1 && parts(rule.by_set_pos).empty() &&
                            parts(rule.by_week_no).empty() &&
                            fill(recurrence.hours_, parts(rule.by_hour)) &&
                            fill(recurrence.minutes_, parts(rule.by_minute)) &&
                            fill(recurrence.seconds_, parts(rule.by_second)) &&
                            fill(recurrence.months_, parts(rule.by_month)) &&
                            fillWeekdays(recurrence.weekdays_, parts(rule.by_day)) &&
                            fillBothWays(recurrence.monthDays_, parts(rule.by_month_day)) &&
                            fillBothWays(recurrence.yearDays_, parts(rule.by_year_day));
  return isUnderstood ? std::optional(recurrence) : std::nullopt;
}

WalkEnd SubdailyRecurrence::walk(WallTime start, WallRange range, WorkBudget& budget,
                                 const OccurrenceTaker& take) const {
  constexpr std::int64_t stepsPerLook = 10;
  SubdailyRecurrence rule = *this;
  const seconds startTime = start - floor<days>(start);
  // What is finer than the unit stays as at the start, unless a part says otherwise.
  if (unit_ > 1s && seconds_.none())
    rule.seconds_.set(static_cast<std::size_t>(startTime % 1min / 1s));
  if (unit_ > 1min && minutes_.none())
    rule.minutes_.set(static_cast<std::size_t>(startTime % 1h / 1min));
  WallTime time = std::max(start, range.from);
  while (time <= range.to) {
    if (!budget.spend(stepsPerLook)) return WalkEnd::tooCostly;
    const WallTime candidate = rule.candidateFrom(time, start);
    if (candidate == time) {
      if (!take(time)) return WalkEnd::stopped;
      time += 1s;
    } else {
      time = candidate;
    }
  }
  return WalkEnd::finished;
}

bool SubdailyRecurrence::isOnDay(local_days day) const {
  const std::chrono::year_month_day date(day);
  const local_days lastOfMonth(date.year() / date.month() / std::chrono::last);
  const local_days newYear(date.year() / 1 / 1);
  const local_days nextNewYear((date.year() + std::chrono::years(1)) / 1 / 1);
  return allows(months_, unsigned(date.month())) &&
         allows(weekdays_, std::chrono::weekday(day).c_encoding()) &&
         allowsBothWays(monthDays_, unsigned(date.day()),
                        unsigned(std::chrono::year_month_day(lastOfMonth).day())) &&
         allowsBothWays(yearDays_, (day - newYear).count() + 1, (nextNewYear - newYear).count());
}

/// `time` when it is an occurrence; else a later time that none stands before.
WallTime SubdailyRecurrence::candidateFrom(WallTime time, WallTime start) const {
  const local_days day = floor<days>(time);
  if (!isOnDay(day)) return day + days(1);
  // From the beginning of the start's hour or minute, whose parts decide within.
  const WallTime origin = start - (start - floor<days>(start)) % unit_;
  const std::int64_t units = (time - origin) / unit_;
  if (units % interval_ != 0) return origin + (units + interval_ - units % interval_) * unit_;
  const seconds timeOfDay = time - day;
  if (!allows(hours_, timeOfDay / 1h)) return floor<std::chrono::hours>(time) + 1h;
  if (!allows(minutes_, timeOfDay % 1h / 1min)) return floor<std::chrono::minutes>(time) + 1min;
  if (!allows(seconds_, timeOfDay % 1min / 1s)) return time + 1s;
  return time;
}

}  // namespace valdrix::desktop
