#include "desktop/icalendar/RecurrenceRule.h"

#include <algorithm>
#include <ctime>
#include <limits>
#include <mutex>

#include "desktop/icalendar/IcalContentLines.h"
#include "desktop/icalendar/IcalHandles.h"
#include "desktop/icalendar/IcalRuleParts.h"

namespace valdrix::desktop {

using namespace std::chrono_literals;
using std::chrono::days;
using std::chrono::floor;

namespace {

/// libical keeps its error number and its scratch memory per thread, and its iterator has no state
/// outside itself. What is shared is set up here, once: whether an error ends the process, and the
/// zone UTC, which it otherwise makes at its first use without a lock. Its tables of zones are
/// never asked for.
void prepareLibical() {
  static std::once_flag once;
  std::call_once(once, [] {
    icalerror_set_errors_are_fatal(0);
    icaltimezone_get_utc_timezone();
  });
}

/// Its strings are owned by nobody; frees them.
class OwnedRule {
 public:
  explicit OwnedRule(const std::string& text)
      : rule_(icalrecurrencetype_from_string(text.c_str())) {}
  OwnedRule(const OwnedRule&) = delete;
  OwnedRule& operator=(const OwnedRule&) = delete;
  ~OwnedRule() { std::free(rule_.rscale); }

  icalrecurrencetype& operator*() { return rule_; }
  icalrecurrencetype* operator->() { return &rule_; }

 private:
  icalrecurrencetype rule_;
};

icaltimetype toLibical(WallTime wall, bool isDate) {
  const auto day = floor<days>(wall);
  const std::chrono::year_month_day date(day);
  const std::chrono::hh_mm_ss time(wall - day);
  icaltimetype result = icaltime_null_time();
  result.year = int(date.year());
  result.month = static_cast<int>(unsigned(date.month()));
  result.day = static_cast<int>(unsigned(date.day()));
  result.hour = static_cast<int>(time.hours().count());
  result.minute = static_cast<int>(time.minutes().count());
  result.second = static_cast<int>(time.seconds().count());
  result.is_date = isDate ? 1 : 0;
  return result;
}

/// libical goes through hours, minutes and seconds in the order in which they are written.
template <std::size_t size>
void sort(short (&list)[size]) {
  const auto count = static_cast<std::ptrdiff_t>(parts(list).size());
  std::sort(list, list + count);
}

WallTime fromLibical(const icaltimetype& time) {
  const auto date = std::chrono::year(time.year) / time.month / time.day;
  return std::chrono::local_days(date) + std::chrono::hours(time.hour) +
         std::chrono::minutes(time.minute) + std::chrono::seconds(time.second);
}

std::optional<IcalDateTime> untilOf(const icalrecurrencetype& rule) {
  if (icaltime_is_null_time(rule.until)) return std::nullopt;
  return IcalDateTime{.wall = fromLibical(rule.until),
                      .isDate = rule.until.is_date != 0,
                      .isUtc = icaltime_is_utc(rule.until) != 0};
}

/// Notes what libical takes while this lives, in time of this thread: a busy machine costs nothing.
class LibicalClock {
 public:
  explicit LibicalClock(WorkBudget& budget) : budget_(budget) {}
  LibicalClock(const LibicalClock&) = delete;
  LibicalClock& operator=(const LibicalClock&) = delete;
  ~LibicalClock() { budget_.noteLibical(now() - start_); }

 private:
  static std::chrono::nanoseconds now() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
  }

  WorkBudget& budget_;
  std::chrono::nanoseconds start_ = now();
};

bool namesACalendar(std::string_view value) {
  constexpr std::string_view word = "RSCALE";
  for (std::size_t at = 0; at + word.size() <= value.size(); ++at)
    if (isSameWord(value.substr(at, word.size()), word)) return true;
  return false;
}

}  // namespace

std::optional<RecurrenceRule> RecurrenceRule::parse(std::string_view value) {
  constexpr std::size_t maximumSize = 8192;
  if (value.size() > maximumSize || namesACalendar(value)) return std::nullopt;
  prepareLibical();
  RecurrenceRule result;
  result.text_ = value;
  OwnedRule rule(result.text_);
  if (rule->freq == ICAL_NO_RECURRENCE || rule->interval < 1) return std::nullopt;
  result.until_ = untilOf(*rule);
  result.count_ = std::max(rule->count, 0);
  result.plain_ = PlainRecurrence::from(*rule);
  if (rule->freq < ICAL_DAILY_RECURRENCE) {
    const auto subdaily = SubdailyRecurrence::from(*rule);
    if (!subdaily) return std::nullopt;
    result.subdaily_ = std::make_shared<const SubdailyRecurrence>(*subdaily);
  }
  if (result.isCheap()) result.text_ = {};
  return result;
}

WallTime RecurrenceRule::lastStart(bool isAllDay, const CalendarZone& zone) const {
  if (!until_) return WallTime::max();
  WallTime last = until_->wall;
  if (until_->isUtc) last = zone.toWall(std::chrono::sys_seconds(last.time_since_epoch()));
  // A DATE means all of that day.
  return isAllDay || until_->isDate ? floor<days>(last) + 24h - 1s : last;
}

WalkEnd RecurrenceRule::walk(WallTime start, bool isAllDay, const CalendarZone& zone,
                             WallRange range, WorkBudget& budget,
                             const OccurrenceTaker& take) const {
  // What counts occurrences must see them all.
  const WallTime last = lastStart(isAllDay, zone);
  const WallRange walked{.from = count_ ? start : std::max(start, range.from),
                         .to = std::min(range.to, last)};
  std::int64_t left = count_ ? count_ : std::numeric_limits<std::int64_t>::max();
  bool isStopped = false;
  const auto offer = [&](WallTime time) {
    --left;
    isStopped = time >= range.from && time <= range.to && !take(time);
    return !isStopped && left > 0;
  };
  WalkEnd end = WalkEnd::stopped;
  if (walked.from > start || offer(start))
    end = walkRule(start, isAllDay, walked, budget,
                   [&](WallTime time) { return time == start || offer(time); });
  const bool isExhausted = left == 0 || (end == WalkEnd::finished && last <= range.to);
  return isExhausted && !isStopped ? WalkEnd::exhausted : end;
}

WalkEnd RecurrenceRule::walkRule(WallTime start, bool isAllDay, WallRange range, WorkBudget& budget,
                                 const OccurrenceTaker& take) const {
  if (plain_) return plain_->walk(start, range, budget, take);
  // Hours make no sense for days.
  if (subdaily_ && isAllDay) return WalkEnd::exhausted;
  if (subdaily_) return subdaily_->walk(start, range, budget, take);
  return walkByLibical(start, isAllDay, range, budget, take);
}

WalkEnd RecurrenceRule::walkByLibical(WallTime start, bool isAllDay, WallRange range,
                                      WorkBudget& budget, const OccurrenceTaker& take) const {
  if (range.to < range.from) return WalkEnd::finished;
  // One call may look at every day up to UNTIL before it finds that there is nothing, at a cost of
  // about five microseconds a day, so the range's end becomes the UNTIL and is paid for in advance.
  constexpr std::int64_t stepsPerDay = 500;
  constexpr std::int64_t stepsPerOccurrence = 2000;
  const bool isAffordable =
      budget.allowsLibical() && budget.spend((range.to - range.from) / 24h * stepsPerDay);
  if (!isAffordable) return WalkEnd::tooCostly;
  const LibicalClock clock(budget);
  OwnedRule rule(text_);
  rule->count = 0;
  rule->until = toLibical(range.to, isAllDay);
  sort(rule->by_hour);
  sort(rule->by_minute);
  sort(rule->by_second);
  const IcalIterator iterator(icalrecur_iterator_new(*rule, toLibical(start, isAllDay)));
  if (!iterator) return WalkEnd::exhausted;
  if (range.from > start)
    icalrecur_iterator_set_start(iterator.get(), toLibical(range.from, isAllDay));
  WallTime last = start - 1s;
  while (budget.spend(stepsPerOccurrence)) {
    const icaltimetype time = icalrecur_iterator_next(iterator.get());
    if (icaltime_is_null_time(time)) return WalkEnd::finished;
    const WallTime wall = isAllDay ? floor<days>(fromLibical(time)) : fromLibical(time);
    // What is listed twice, it gives twice.
    if (wall <= last || wall < range.from) continue;
    last = wall;
    if (wall > range.to) return WalkEnd::finished;
    if (!take(wall)) {
      budget.refund((range.to - wall) / 24h * stepsPerDay);
      return WalkEnd::stopped;
    }
  }
  return WalkEnd::tooCostly;
}

}  // namespace valdrix::desktop
