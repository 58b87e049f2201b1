#include "desktop/vdir/VdirSnapshot.h"

#include <algorithm>
#include <optional>
#include <string>
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

std::size_t sizeOf(const std::optional<std::string>& text) { return text ? text->size() : 0; }

/// How many, from the first on, can be held.
std::size_t heldOf(const std::vector<VdirSnapshot::Occurrence>& occurrences) {
  constexpr std::size_t page = 1024;
  std::size_t weight = 0;
  const auto isTooMuch = [&weight](const VdirSnapshot::Occurrence& each) {
    const auto& event = *each.event;
    weight += 1 + (sizeOf(event.eventIdentifier) + sizeOf(event.title)) / page;
    return weight > VdirSnapshot::maximumSize;
  };
  return static_cast<std::size_t>(std::ranges::find_if(occurrences, isTooMuch) -
                                  occurrences.begin());
}

void keepNearest(std::vector<VdirSnapshot::Occurrence>& occurrences, Instant today) {
  if (heldOf(occurrences) == occurrences.size()) return;
  const auto order = [today](const VdirSnapshot::Occurrence& each) {
    const auto start = each.event->startDate;
    const bool isOver = start < today && each.event->endDate <= today;
    const auto time = start.time_since_epoch();
    return std::pair(isOver, isOver ? -time : time);
  };
  std::ranges::stable_sort(occurrences, {}, order);
  occurrences.resize(heldOf(occurrences));
}

}  // namespace

VdirSnapshot::VdirSnapshot(std::vector<platform::EventCalendar> calendars,
                           std::vector<Occurrence> occurrences, Instant today)
    : calendars_(std::move(calendars)), occurrences_(std::move(occurrences)) {
  keepNearest(occurrences_, today);
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
