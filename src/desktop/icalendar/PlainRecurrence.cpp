#include "desktop/icalendar/PlainRecurrence.h"

#include <algorithm>

#include "desktop/icalendar/IcalRuleParts.h"

namespace valdrix::desktop {

using std::chrono::days;
using std::chrono::floor;
using std::chrono::local_days;
using std::chrono::weekday;

namespace {

/// The weekdays as bits; nothing when one of them is a certain one of its month.
std::optional<std::uint8_t> weekdayBits(std::span<const short> byDay) {
  unsigned bits = 0;
  for (const short day : byDay) {
    if (ordinalOf(day) != 0) return std::nullopt;
    bits |= 1U << weekdayOf(day);
  }
  return static_cast<std::uint8_t>(bits);
}

/// Rounded up; never negative.
std::int64_t stepsUntil(std::int64_t distance, std::int64_t step) {
  return distance <= 0 ? 0 : (distance + step - 1) / step;
}

std::int64_t monthsSinceZero(std::chrono::year_month month) {
  return std::int64_t{int(month.year())} * 12 + unsigned(month.month()) - 1;
}

std::chrono::year_month monthAt(std::int64_t monthsSinceZero) {
  return {std::chrono::year(static_cast<int>(monthsSinceZero / 12)),
          std::chrono::month(static_cast<unsigned>(monthsSinceZero % 12 + 1))};
}

std::chrono::year_month monthOf(WallTime time) {
  const std::chrono::year_month_day date(floor<days>(time));
  return date.year() / date.month();
}

}  // namespace

std::optional<PlainRecurrence> PlainRecurrence::from(const icalrecurrencetype& rule) {
  const bool isMore = !parts(rule.by_second).empty() || !parts(rule.by_minute).empty() ||
                      !parts(rule.by_hour).empty() || !parts(rule.by_year_day).empty() ||
                      !parts(rule.by_week_no).empty() || !parts(rule.by_set_pos).empty();
  if (isMore || rule.interval < 1) return std::nullopt;
  switch (rule.freq) {
    case ICAL_DAILY_RECURRENCE:
    case ICAL_WEEKLY_RECURRENCE:
      return byDayOrWeek(rule);
    case ICAL_MONTHLY_RECURRENCE:
    case ICAL_YEARLY_RECURRENCE:
      return byMonth(rule);
    default:
      return std::nullopt;
  }
}

std::optional<PlainRecurrence> PlainRecurrence::byDayOrWeek(const icalrecurrencetype& rule) {
  const bool isDaily = rule.freq == ICAL_DAILY_RECURRENCE;
  const auto byDay = parts(rule.by_day);
  const auto weekdays = weekdayBits(byDay);
  if (!parts(rule.by_month).empty() || !parts(rule.by_month_day).empty() || !weekdays) return {};
  if (isDaily && !byDay.empty() && rule.interval != 1) return {};
  PlainRecurrence plain;
  plain.step_ = isDaily && byDay.empty() ? Step::days : Step::weeks;
  plain.interval_ = rule.interval;
  plain.weekdays_ = *weekdays;
  plain.weekStart_ = static_cast<std::uint8_t>(std::max<int>(rule.week_start, 1) - 1);
  return plain;
}

std::optional<PlainRecurrence> PlainRecurrence::byMonth(const icalrecurrencetype& rule) {
  const bool isYearly = rule.freq == ICAL_YEARLY_RECURRENCE;
  const auto months = parts(rule.by_month);
  const auto monthDays = parts(rule.by_month_day);
  const auto byDay = parts(rule.by_day);
  const bool isOneDay = monthDays.size() + byDay.size() <= 1;
  const bool isOneMonth = isYearly ? months.size() <= 1 : months.empty();
  // Without a month, a day of a year's rule is one of each month, or of the year.
  const bool isDayOfYear = isYearly && months.empty() && monthDays.size() + byDay.size() > 0;
  if (!isOneDay || !isOneMonth || isDayOfYear) return {};
  if (!byDay.empty() && (ordinalOf(byDay.front()) == 0 || std::abs(ordinalOf(byDay.front())) > 5))
    return {};
  if (!months.empty() && (months.front() < 1 || months.front() > 12)) return {};
  PlainRecurrence plain;
  plain.step_ = Step::months;
  plain.interval_ = isYearly ? 12 * rule.interval : rule.interval;
  if (!months.empty()) plain.month_ = static_cast<std::uint8_t>(months.front());
  if (!monthDays.empty()) plain.day_ = static_cast<std::int8_t>(monthDays.front());
  if (!byDay.empty()) {
    plain.ordinal_ = static_cast<std::int8_t>(ordinalOf(byDay.front()));
    plain.weekday_ = static_cast<std::uint8_t>(weekdayOf(byDay.front()));
  }
  return plain;
}

WalkEnd PlainRecurrence::walk(WallTime start, WallRange range, WorkBudget& budget,
                              const OccurrenceTaker& take) const {
  switch (step_) {
    case Step::days:
      return walkDays(start, range, budget, take);
    case Step::weeks:
      return walkWeeks(start, range, budget, take);
    case Step::months:
      return walkMonths(start, range, budget, take);
  }
  return WalkEnd::finished;
}

WalkEnd PlainRecurrence::walkDays(WallTime start, WallRange range, WorkBudget& budget,
                                  const OccurrenceTaker& take) const {
  const days step(interval_);
  const auto distance = (range.from - start).count();
  WallTime time = start + stepsUntil(distance, std::chrono::seconds(step).count()) * step;
  for (; time <= range.to; time += step) {
    if (!budget.spend(1)) return WalkEnd::tooCostly;
    if (!take(time)) return WalkEnd::stopped;
  }
  return WalkEnd::finished;
}

WalkEnd PlainRecurrence::walkWeeks(WallTime start, WallRange range, WorkBudget& budget,
                                   const OccurrenceTaker& take) const {
  const local_days startDay = floor<days>(start);
  const unsigned bits = weekdays_ ? weekdays_ : 1U << weekday(startDay).c_encoding();
  const local_days firstWeek = startDay - (weekday(startDay) - weekday(weekStart_));
  const days step(7 * interval_);
  // One week more at the front, since the range may begin inside one.
  const auto distance = (floor<days>(range.from) - days(6) - firstWeek).count();
  for (local_days week = firstWeek + stepsUntil(distance, step.count()) * step; week <= range.to;
       week += step) {
    if (!budget.spend(1)) return WalkEnd::tooCostly;
    for (local_days day = week; day < week + days(7); day += days(1)) {
      const WallTime time = day + (start - startDay);
      if ((bits >> weekday(day).c_encoding() & 1U) == 0 || time < start || time < range.from)
        continue;
      if (time > range.to) return WalkEnd::finished;
      if (!take(time)) return WalkEnd::stopped;
    }
  }
  return WalkEnd::finished;
}

WalkEnd PlainRecurrence::walkMonths(WallTime start, WallRange range, WorkBudget& budget,
                                    const OccurrenceTaker& take) const {
  const local_days startDay = floor<days>(start);
  const std::chrono::year_month_day startDate(startDay);
  const auto startMonth = monthOf(start);
  const std::int64_t first =
      monthsSinceZero(month_ ? startMonth.year() / std::chrono::month(month_) : startMonth);
  const std::int64_t last = monthsSinceZero(monthOf(range.to));
  const std::int64_t distance = monthsSinceZero(monthOf(range.from)) - first;
  for (std::int64_t month = first + stepsUntil(distance, interval_) * interval_; month <= last;
       month += interval_) {
    if (!budget.spend(1)) return WalkEnd::tooCostly;
    const auto day = dayIn(monthAt(month), startDate.day());
    if (!day) continue;
    const WallTime time = *day + (start - startDay);
    if (time < start || time < range.from) continue;
    if (time > range.to) return WalkEnd::finished;
    if (!take(time)) return WalkEnd::stopped;
  }
  return WalkEnd::finished;
}

std::optional<local_days> PlainRecurrence::dayIn(std::chrono::year_month month,
                                                 std::chrono::day startDay) const {
  const local_days lastDay(month / std::chrono::last);
  if (ordinal_ < 0) {
    const local_days day =
        local_days(month / weekday(weekday_)[std::chrono::last]) + days(7) * (ordinal_ + 1);
    return day >= local_days(month / 1) ? std::optional(day) : std::nullopt;
  }
  if (ordinal_ > 0) {
    const local_days day = local_days(month / weekday(weekday_)[1]) + days(7) * (ordinal_ - 1);
    return day <= lastDay ? std::optional(day) : std::nullopt;
  }
  if (day_ < 0) {
    const local_days day = lastDay + days(day_ + 1);
    return day >= local_days(month / 1) ? std::optional(day) : std::nullopt;
  }
  const auto day = month / (day_ > 0 ? std::chrono::day(static_cast<unsigned>(day_)) : startDay);
  return day.ok() ? std::optional<local_days>(day) : std::nullopt;
}

}  // namespace valdrix::desktop
