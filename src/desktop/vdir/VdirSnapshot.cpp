#include "desktop/vdir/VdirSnapshot.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

namespace valdrix::desktop {

using platform::Event;
using platform::Instant;

namespace {

bool overlaps(const Event& event, Instant start, Instant end) {
  const bool isMoment = event.startDate == event.endDate;
  return event.startDate < end && (event.endDate > start || (isMoment && event.startDate >= start));
}

}  // namespace

VdirSnapshot::VdirSnapshot(std::vector<platform::EventCalendar> calendars,
                           std::vector<Occurrence> occurrences)
    : calendars_(std::move(calendars)), occurrences_(std::move(occurrences)) {
  std::ranges::stable_sort(occurrences_, {},
                           [](const Occurrence& each) { return each.event->startDate; });
  latestEnds_.reserve(occurrences_.size());
  Instant latest = Instant::min();
  for (const auto& each : occurrences_)
    latestEnds_.push_back(latest = std::max(latest, each.event->endDate));
}

std::vector<Event> VdirSnapshot::events(Instant start, Instant end,
                                        const std::vector<std::string>& calendarIdentifiers) const {
  const std::unordered_set<std::string> asked(calendarIdentifiers.begin(),
                                              calendarIdentifiers.end());
  std::vector<bool> isAsked;
  for (const auto& calendar : calendars_)
    isAsked.push_back(asked.contains(calendar.calendarIdentifier));

  const auto first = std::ranges::lower_bound(latestEnds_, start) - latestEnds_.begin();
  std::vector<Event> events;
  for (auto each = occurrences_.begin() + first; each != occurrences_.end(); ++each) {
    if (each->event->startDate >= end) break;
    if (!isAsked[each->calendar] || !overlaps(*each->event, start, end)) continue;
    events.push_back(*each->event);
    events.back().calendar = calendars_[each->calendar];
  }
  return events;
}

}  // namespace valdrix::desktop
