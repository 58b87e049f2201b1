#include "desktop/calendar/DesktopEventStore.h"

#include <utility>

namespace valdrix::desktop {

platform::EventAuthorization DesktopEventStore::authorizationStatus() const {
  return platform::EventAuthorization::notDetermined;
}

void DesktopEventStore::requestFullAccessToEvents(std::function<void(bool)> completion) {
  completion(false);
}

std::vector<platform::EventCalendar> DesktopEventStore::calendars() const {
  std::vector<platform::EventCalendar> all;
  for (const auto& source : sources_)
    for (auto& calendar : source->calendars()) all.push_back(std::move(calendar));
  return all;
}

std::vector<platform::Event> DesktopEventStore::events(
    platform::Instant start, platform::Instant end,
    const std::vector<std::string>& calendarIdentifiers) const {
  std::vector<platform::Event> all;
  for (const auto& source : sources_)
    for (auto& event : source->events(start, end, calendarIdentifiers))
      all.push_back(std::move(event));
  return all;
}

Token DesktopEventStore::observeChanges(std::function<void()> block) {
  return observers_.add(std::move(block));
}

}  // namespace valdrix::desktop
