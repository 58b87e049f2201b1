#include "sim/SimEventStore.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace valdrix::sim {

using platform::Event;
using platform::EventAuthorization;

void SimEventStore::requestFullAccessToEvents(std::function<void(bool)> completion) {
  const bool isAsked = status_ == EventAuthorization::notDetermined;
  trace_.add(isAsked ? "calendar asks the user" : "calendar knows the answer");
  runLoop_.async(lifetime_.weak([this, isAsked, completion = std::move(completion)] {
    if (isAsked) status_ = grants_ ? EventAuthorization::fullAccess : EventAuthorization::denied;
    completion(status_ == EventAuthorization::fullAccess);
  }));
}

std::vector<platform::EventCalendar> SimEventStore::calendars() const {
  if (status_ != EventAuthorization::fullAccess) return {};
  return calendars_;
}

std::vector<Event> SimEventStore::events(
    platform::Instant start, platform::Instant end,
    const std::vector<std::string>& calendarIdentifiers) const {
  std::vector<Event> found;
  if (status_ != EventAuthorization::fullAccess) return found;
  std::ranges::copy_if(events_, std::back_inserter(found), [&](const Event& event) {
    const bool isWanted = event.calendar && std::ranges::find(calendarIdentifiers,
                                                              event.calendar->calendarIdentifier) !=
                                                calendarIdentifiers.end();
    const bool endsAfter = event.endDate > start || event.startDate == start;
    return isWanted && event.startDate < end && endsAfter;
  });
  return found;
}

Token SimEventStore::observeChanges(std::function<void()> block) {
  return observers_.add(std::move(block));
}

void SimEventStore::setContents(std::vector<platform::EventCalendar> calendars,
                                std::vector<Event> events) {
  calendars_ = std::move(calendars);
  events_ = std::move(events);
  runLoop_.async(lifetime_.weak([this] { observers_.notify(); }));
}

}  // namespace valdrix::sim
