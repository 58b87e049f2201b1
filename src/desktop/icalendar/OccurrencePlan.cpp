#include "desktop/icalendar/OccurrencePlan.h"

#include <algorithm>
#include <functional>

namespace valdrix::desktop {

using namespace std::chrono_literals;
using platform::Instant;
using std::chrono::days;
using std::chrono::floor;
using std::chrono::seconds;
using std::chrono::sys_seconds;

namespace {

seconds upperBound(const IcalDuration& length) { return length.days + length.seconds; }

}  // namespace

OccurrencePlan::OccurrencePlan(const IcalEvent* master, const std::vector<IcalEvent>& overrides,
                               const CalendarZone& local)
    : local_(local),
      master_(master),
      overrides_(overrides),
      isCancelled_(master && master->isCancelled) {
  if (isCancelled_) master_ = nullptr;
  if (!master_) return;
  length_ = lengthOf(master_->start, master_->extent);
  longest_ = upperBound(length_);
  for (const IcalEvent& override : overrides_) {
    leaveOut(*override.recurrenceId);
    if (override.isThisAndFuture) revise(override);
  }
  if (master_->recurrence) {
    for (const IcalTime& exception : master_->recurrence->exceptions) leaveOut(exception);
  }
  std::ranges::sort(excluded_);
  std::ranges::sort(excludedDays_);
  std::ranges::sort(revisions_, {}, &Revision::from);
  addAdditions();
}

bool OccurrencePlan::visitSingle(const Visitor& visit) const {
  if (isCancelled_) return true;
  for (const IcalEvent& override : overrides_) {
    if (override.isCancelled) continue;
    if (!visit(place(override, override.start.wall, lengthOf(override.start, override.extent))))
      return false;
  }
  return std::ranges::all_of(additions_, std::cref(visit));
}

std::span<const RecurrenceRule> OccurrencePlan::rules() const {
  if (!master_ || !master_->recurrence) return {};
  return master_->recurrence->rules;
}

WallRange OccurrencePlan::startsBetween(Instant start, Instant end) const {
  // A day for the difference between any two zones' clocks.
  const CalendarZone& zone = zoneOf(master_->start);
  return {.from = zone.toWall(floor<seconds>(start)) - longest_ - disorder_ - 24h,
          .to = zone.toWall(floor<seconds>(end)) + disorder_ + 24h};
}

WalkEnd OccurrencePlan::visitRule(const RecurrenceRule& rule, WallRange starts, WorkBudget& budget,
                                  const Visitor& visit) const {
  return rule.walk(master_->start.wall, master_->start.isDate, zoneOf(master_->start), starts,
                   budget, [&](WallTime wall) {
                     const auto occurrence = placeByRule(wall);
                     return !occurrence || visit(*occurrence);
                   });
}

sys_seconds OccurrencePlan::instantOf(WallTime wall) const {
  return zoneOf(master_->start).toInstant(wall);
}

const CalendarZone& OccurrencePlan::zoneOf(const IcalTime& time) const {
  return time.zone ? *time.zone : local_;
}

sys_seconds OccurrencePlan::instantOf(const IcalTime& time) const {
  return zoneOf(time).toInstant(time.wall);
}

/// Where the occurrence stands that an EXDATE, RDATE or RECURRENCE-ID names. A time without a zone
/// is in the event's, and of a time and a day only what the event has too counts.
sys_seconds OccurrencePlan::occurrenceNamedBy(const IcalTime& time) const {
  const CalendarZone& zone = zoneOf(master_->start);
  if (!master_->start.isDate && time.isDate)
    return zone.toInstant(time.wall + (master_->start.wall - floor<days>(master_->start.wall)));
  if (!master_->start.isDate) return time.zone ? instantOf(time) : zone.toInstant(time.wall);
  const WallTime wall = time.zone ? zone.toWall(instantOf(time)) : time.wall;
  return zone.toInstant(floor<days>(wall));
}

OccurrencePlan::Length OccurrencePlan::lengthOf(const IcalTime& start,
                                                const IcalExtent& extent) const {
  if (start.isDate) {
    days length{1};
    if (extent.end) length = ceil<days>(extent.end->wall - start.wall);
    if (extent.duration) length = extent.duration->days + ceil<days>(extent.duration->seconds);
    // The same day as the end is a common mistake for one day.
    return {.days = std::max(length, days(1))};
  }
  if (extent.duration) return *extent.duration;
  if (!extent.end) return {};
  const CalendarZone& endZone = zoneOf(extent.end->isDate ? start : *extent.end);
  return {.seconds = std::max(0s, endZone.toInstant(extent.end->wall) - instantOf(start))};
}

Occurrence OccurrencePlan::place(const IcalEvent& event, WallTime wall,
                                 const Length& length) const {
  const CalendarZone& zone = zoneOf(event.start);
  const sys_seconds start = zone.toInstant(wall);
  // Days are days of the calendar, 23 to 25 hours long; hours are not.
  const sys_seconds lastDay = length.days.count() ? zone.toInstant(wall + length.days) : start;
  return {.start = start,
          .end = std::max(start, lastDay + length.seconds),
          .event = &event,
          .isInGap = zone.toWall(start) != wall};
}

/// Nothing for one that was left out.
std::optional<Occurrence> OccurrencePlan::placeByRule(WallTime wall) const {
  const sys_seconds instant = instantOf(wall);
  if (isExcluded(instant)) return std::nullopt;
  const auto next = std::ranges::upper_bound(revisions_, instant, {}, &Revision::from);
  if (next == revisions_.begin()) return place(*master_, wall, length_);

  const Revision& revision = *std::prev(next);
  if (revision.event->isCancelled) return std::nullopt;
  const CalendarZone& zone = zoneOf(revision.event->start);
  const WallTime moved =
      revision.event->start.wall + (zone.toWall(instant) - zone.toWall(revision.from));
  return place(*revision.event, revision.event->start.isDate ? floor<days>(moved) : moved,
               revision.length);
}

bool OccurrencePlan::isExcluded(sys_seconds instant) const {
  if (std::ranges::binary_search(excluded_, instant)) return true;
  if (excludedDays_.empty()) return false;
  const auto day = floor<days>(zoneOf(master_->start).toWall(instant));
  return std::ranges::binary_search(excludedDays_, day);
}

/// A day leaves out what an event has on it at any time.
void OccurrencePlan::leaveOut(const IcalTime& time) {
  if (time.isDate && !master_->start.isDate) {
    excludedDays_.push_back(floor<days>(time.wall));
  } else {
    excluded_.push_back(occurrenceNamedBy(time));
  }
}

void OccurrencePlan::revise(const IcalEvent& override) {
  const sys_seconds from = occurrenceNamedBy(*override.recurrenceId);
  const Length length = lengthOf(override.start, override.extent);
  revisions_.push_back({.from = from, .event = &override, .length = length});
  longest_ = std::max(longest_, upperBound(length));
  disorder_ = std::max<seconds>(disorder_, abs(instantOf(override.start) - from) + 24h);
}

/// Those that RDATE adds, and the event's own start when no rule gives it.
void OccurrencePlan::addAdditions() {
  const CalendarZone& zone = zoneOf(master_->start);
  if (rules().empty()) add(master_->start.wall, {});
  if (!master_->recurrence) return;
  for (const IcalAdditionalStart& addition : master_->recurrence->additions) {
    const bool hasLength = addition.extent.end || addition.extent.duration;
    add(zone.toWall(occurrenceNamedBy(addition.start)),
        hasLength ? std::optional(lengthOf(addition.start, addition.extent)) : std::nullopt);
  }
  std::ranges::sort(additions_, {}, &Occurrence::start);
  const auto isSameStart = [](const Occurrence& one, const Occurrence& other) {
    return one.start == other.start;
  };
  additions_.erase(std::unique(additions_.begin(), additions_.end(), isSameStart),
                   additions_.end());
  // A rule may give them too.
  for (const Occurrence& addition : additions_) excluded_.push_back(addition.start);
  std::ranges::sort(excluded_);
}

void OccurrencePlan::add(WallTime wall, std::optional<Length> length) {
  auto occurrence = placeByRule(wall);
  if (occurrence && length) occurrence = place(*master_, wall, *length);
  if (occurrence) additions_.push_back(*occurrence);
}

}  // namespace valdrix::desktop
