#include "sim/SimEventStore.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <utility>

namespace valdrix::sim {

using platform::Event;
using platform::EventAuthorization;
using platform::EventCalendar;

void SimEventStore::requestFullAccessToEvents(std::function<void(bool)> completion) {
  const bool isAsked = status_ == EventAuthorization::notDetermined;
  trace_.add(isAsked ? "access asks the user" : "access is known");
  runLoop_.async(lifetime_.weak([this, isAsked, completion = std::move(completion)] {
    if (isAsked) status_ = grants_ ? EventAuthorization::fullAccess : EventAuthorization::denied;
    completion(status_ == EventAuthorization::fullAccess);
  }));
}

std::vector<EventCalendar> SimEventStore::calendars() const {
  if (status_ != EventAuthorization::fullAccess) return {};
  return calendars_;
}

std::vector<Event> SimEventStore::events(
    platform::Instant start, platform::Instant end,
    const std::vector<std::string>& calendarIdentifiers) const {
  std::string names;
  for (const auto& identifier : calendarIdentifiers) names += ' ' + identifier;
  trace_.add("query in" + (names.empty() ? " nothing" : names));
  std::vector<Event> found;
  if (status_ != EventAuthorization::fullAccess) return found;
  std::ranges::copy_if(events_, std::back_inserter(found), [&](const Event& event) {
    const bool isWanted =
        std::ranges::find(calendarIdentifiers, event.calendar->calendarIdentifier) !=
        calendarIdentifiers.end();
    const bool endsAfter = event.endDate > start || event.startDate == start;
    return isWanted && event.startDate < end && endsAfter;
  });
  return found;
}

Token SimEventStore::observeChanges(std::function<void()> block) {
  return observers_.add(std::move(block));
}

const EventCalendar* SimEventStore::calendarOf(const std::string& identifier) const {
  const auto found = std::ranges::find(calendars_, identifier, &EventCalendar::calendarIdentifier);
  return found == calendars_.end() ? nullptr : &*found;
}

void SimEventStore::addCalendar(const EventCalendar& calendar) {
  const auto former = std::ranges::find(calendars_, calendar.calendarIdentifier,
                                        &EventCalendar::calendarIdentifier);
  if (former == calendars_.end())
    calendars_.push_back(calendar);
  else
    *former = calendar;
  for (auto& event : events_)
    if (event.calendar->calendarIdentifier == calendar.calendarIdentifier)
      event.calendar = calendar;
  changed();
}

bool SimEventStore::removeCalendar(const std::string& identifier) {
  std::erase_if(events_, [&](const Event& event) {
    return event.calendar->calendarIdentifier == identifier;
  });
  const auto count = std::erase_if(calendars_, [&](const EventCalendar& calendar) {
    return calendar.calendarIdentifier == identifier;
  });
  changed();
  return count > 0;
}

bool SimEventStore::addEvent(Event event, const std::string& calendarIdentifier) {
  const EventCalendar* calendar = calendarOf(calendarIdentifier);
  if (!calendar) return false;
  event.calendar = *calendar;
  events_.push_back(std::move(event));
  changed();
  return true;
}

bool SimEventStore::removeEvent(const std::string& identifier) {
  const auto count = std::erase_if(
      events_, [&](const Event& event) { return event.eventIdentifier == identifier; });
  changed();
  return count > 0;
}

void SimEventStore::changed() {
  if (std::exchange(isNoticeUnderWay_, true)) return;
  runLoop_.async(lifetime_.weak([this] {
    isNoticeUnderWay_ = false;
    observers_.notify();
  }));
}

}  // namespace valdrix::sim
