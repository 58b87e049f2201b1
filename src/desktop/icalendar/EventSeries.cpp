#include "desktop/icalendar/EventSeries.h"

#include <algorithm>
#include <set>

namespace valdrix::desktop {

using namespace std::chrono_literals;
using platform::Instant;
using std::chrono::sys_seconds;

namespace {

bool isSameTime(const IcalTime& one, const IcalTime& other) {
  return one.wall == other.wall && one.isDate == other.isDate && one.zone == other.zone;
}

/// Each is compared with all others.
constexpr std::size_t maximumOverrides = 4096;

bool recurs(const IcalEvent& event) {
  return event.recurrence &&
         !(event.recurrence->rules.empty() && event.recurrence->additions.empty());
}

/// Whether an occurrence is not over at `instant`; one without length is over after its start.
bool lastsBeyond(const Occurrence& occurrence, Instant instant) {
  return occurrence.end > instant ||
         (occurrence.start == occurrence.end && occurrence.start >= instant);
}

/// How far ahead the next occurrence is looked for; the rules that libical follows cost up to two
/// milliseconds a year.
std::chrono::days horizonOf(const RecurrenceRule& rule) {
  return std::chrono::days(rule.isCheap() ? 366 * 40 : 400);
}

/// At the earliest where the next occurrence that `rule` gives starts.
std::optional<Instant> nextByRule(const OccurrencePlan& plan, const RecurrenceRule& rule,
                                  WallTime firstStart, Instant after, WorkBudget& budget) {
  const WallTime from = plan.startsBetween(after, after).from;
  const WallTime to = std::max(from, firstStart) + horizonOf(rule);
  constexpr auto longestGap = 24h;
  std::optional<Instant> next;
  const WalkEnd end =
      plan.visitRule(rule, {.from = from, .to = to}, budget, [&](const Occurrence& occurrence) {
        if (lastsBeyond(occurrence, after))
          next = occurrence.start - plan.disorder() - (occurrence.isInGap ? longestGap : 0h);
        return !next.has_value();
      });
  if (end == WalkEnd::tooCostly) return after;
  if (end == WalkEnd::finished) return plan.instantOf(to) - plan.disorder();
  return next;
}

}  // namespace

EventSeries::EventSeries(IcalEvent event) {
  if (event.recurrenceId) {
    overrides_.push_back(std::move(event));
  } else {
    master_ = std::move(event);
  }
}

const std::optional<std::string>& EventSeries::uid() const {
  return master_ ? master_->uid : overrides_.front().uid;
}

std::optional<IcalEvent> EventSeries::merge(IcalEvent event) {
  if (event.recurrenceId) {
    const auto same = std::ranges::find_if(overrides_, [&](const IcalEvent& other) {
      return isSameTime(*other.recurrenceId, *event.recurrenceId);
    });
    if (same == overrides_.end()) {
      if (overrides_.size() < maximumOverrides) overrides_.push_back(std::move(event));
    } else if (event.sequence >= same->sequence) {
      *same = std::move(event);
    }
    return std::nullopt;
  }
  // Of two versions the newer counts. Different events of the same version come from a writer that
  // gives all of its events one UID.
  if (master_ && master_->sequence == event.sequence && !isSameTime(master_->start, event.start))
    return event;
  if (!master_ || event.sequence >= master_->sequence) master_ = std::move(event);
  return std::nullopt;
}

void EventSeries::collect(Window window, const CalendarZone& local, WorkBudget& budget,
                          std::vector<platform::Event>& events) const {
  constexpr std::size_t maximumCount = 10'000;
  const std::size_t limit = events.size() + maximumCount;
  const bool isRecurring = !overrides_.empty() || (master_ && recurs(*master_));
  const auto add = [&](const Occurrence& occurrence) {
    if (occurrence.start < window.end && lastsBeyond(occurrence, window.start))
      events.push_back({.eventIdentifier = uid(),
                        .title = occurrence.event->title,
                        .startDate = occurrence.start,
                        .endDate = occurrence.end,
                        .isAllDay = occurrence.event->start.isDate,
                        .hasRecurrenceRules = isRecurring});
    return events.size() < limit;
  };
  const OccurrencePlan occurrences = plan(local);
  if (!occurrences.visitSingle(add) || occurrences.rules().empty()) return;
  const WallRange starts = occurrences.startsBetween(window.start, window.end);
  if (occurrences.rules().size() == 1) {
    occurrences.visitRule(occurrences.rules().front(), starts, budget, add);
    return;
  }
  std::set<sys_seconds> seen;
  for (const RecurrenceRule& rule : occurrences.rules())
    occurrences.visitRule(rule, starts, budget, [&](const Occurrence& occurrence) {
      return !seen.insert(occurrence.start).second || add(occurrence);
    });
}

std::optional<Instant> EventSeries::nextStart(Instant after, const CalendarZone& local,
                                              WorkBudget& budget) const {
  std::optional<Instant> next;
  const auto consider = [&](Instant start) { next = std::min(next.value_or(start), start); };
  const OccurrencePlan occurrences = plan(local);
  occurrences.visitSingle([&](const Occurrence& occurrence) {
    if (lastsBeyond(occurrence, after)) consider(occurrence.start);
    return true;
  });
  for (const RecurrenceRule& rule : occurrences.rules())
    if (const auto start = nextByRule(occurrences, rule, master_->start.wall, after, budget))
      consider(*start);
  return next;
}

OccurrencePlan EventSeries::plan(const CalendarZone& local) const {
  return {master_ ? &*master_ : nullptr, overrides_, local};
}

}  // namespace valdrix::desktop
