#include "desktop/calendar/DesktopEventStore.h"

#include <algorithm>
#include <utility>

namespace valdrix::desktop {

using platform::Event;
using platform::EventAuthorization;
using platform::EventCalendar;
using platform::Instant;

DesktopEventStore::DesktopEventStore(Sources sources, PrivacyRecord& record, AccessPrompt& prompt)
    : sources_(std::move(sources)), record_(record), prompt_(prompt) {
  for (const auto& source : sources_)
    sourceObservers_.push_back(source->observeChanges([this] { observers_.notify(); }));
  recordObserver_ = record_.observeChanges([this] {
    stopUnlessAllowed();
    startIfAllowed();
    observers_.notify();
  });
  startIfAllowed();
}

bool DesktopEventStore::isAllowed() const {
  return record_.calendars() == PrivacyRecord::Answer::allowed;
}

EventAuthorization DesktopEventStore::authorizationStatus() const {
  const auto answer = record_.calendars();
  if (answer == PrivacyRecord::Answer::none) return EventAuthorization::notDetermined;
  if (answer == PrivacyRecord::Answer::refused) return EventAuthorization::denied;
  const auto has = [this](CalendarSource::Reach reach) {
    return std::ranges::any_of(sources_,
                               [reach](const auto& source) { return source->reach() == reach; });
  };
  if (has(CalendarSource::Reach::readable)) return EventAuthorization::fullAccess;
  if (has(CalendarSource::Reach::writeOnly)) return EventAuthorization::writeOnly;
  if (has(CalendarSource::Reach::closed)) return EventAuthorization::restricted;
  return EventAuthorization::fullAccess;
}

void DesktopEventStore::startIfAllowed() {
  if (isStarted_ || authorizationStatus() != EventAuthorization::fullAccess) return;
  isStarted_ = true;
  for (const auto& source : sources_) source->start();
}

void DesktopEventStore::stopUnlessAllowed() {
  if (isAllowed() || !std::exchange(isStarted_, false)) return;
  for (const auto& source : sources_) source->stop();
}

void DesktopEventStore::requestFullAccessToEvents(std::function<void(bool)> completion) {
  if (record_.calendars() != PrivacyRecord::Answer::none) {
    startIfAllowed();
    return completion(authorizationStatus() == EventAuthorization::fullAccess);
  }
  completions_.push_back(std::move(completion));
  prompt_.ask(lifetime_.weak([this](AccessPrompt::Answer answer) { handleAnswer(answer); }));
}

void DesktopEventStore::handleAnswer(AccessPrompt::Answer answer) {
  if (answer == AccessPrompt::Answer::allowed) record_.setCalendars(PrivacyRecord::Answer::allowed);
  if (answer == AccessPrompt::Answer::refused) record_.setCalendars(PrivacyRecord::Answer::refused);
  startIfAllowed();
  const bool isGranted = authorizationStatus() == EventAuthorization::fullAccess;
  for (const auto& completion : std::exchange(completions_, {})) completion(isGranted);
}

std::vector<DesktopEventStore::Entry> DesktopEventStore::entries() const {
  std::vector<Entry> entries;
  if (!isStarted_ || !isAllowed()) return entries;
  for (const auto& source : sources_) {
    for (auto& calendar : source->calendars()) {
      const auto isTaken = [&](const Entry& entry) {
        return entry.calendar.calendarIdentifier == calendar.calendarIdentifier;
      };
      auto own = calendar.calendarIdentifier;
      while (std::ranges::any_of(entries, isTaken)) calendar.calendarIdentifier += "#2";
      entries.push_back({source.get(), std::move(own), std::move(calendar)});
    }
  }
  return entries;
}

std::vector<EventCalendar> DesktopEventStore::calendars() const {
  std::vector<EventCalendar> all;
  for (auto& entry : entries()) all.push_back(std::move(entry.calendar));
  return all;
}

std::vector<Event> DesktopEventStore::events(
    Instant start, Instant end, const std::vector<std::string>& calendarIdentifiers) const {
  latestEnd_ = std::max(latestEnd_, end);
  auto wanted = entries();
  std::erase_if(wanted, [&](const Entry& entry) {
    return std::ranges::find(calendarIdentifiers, entry.calendar.calendarIdentifier) ==
           calendarIdentifiers.end();
  });
  std::vector<Event> all;
  for (const auto& source : sources_) {
    std::vector<std::string> identifiers;
    for (const auto& entry : wanted)
      if (entry.source == source.get()) identifiers.push_back(entry.identifierInSource);
    if (identifiers.empty()) continue;
    for (auto& event : source->events(start, end, identifiers)) {
      const auto entry = std::ranges::find_if(wanted, [&](const Entry& candidate) {
        return candidate.source == source.get() && event.calendar &&
               candidate.identifierInSource == event.calendar->calendarIdentifier;
      });
      if (entry != wanted.end()) event.calendar = entry->calendar;
      all.push_back(std::move(event));
    }
  }
  return all;
}

std::optional<Event> DesktopEventStore::occurrenceNear(std::string_view eventIdentifier,
                                                       Instant instant) const {
  // What sources keep at hand anyway: nothing that can be listed is further away.
  constexpr std::chrono::days before(1);
  constexpr std::chrono::days after(14);
  std::vector<std::string> identifiers;
  for (const auto& calendar : calendars()) identifiers.push_back(calendar.calendarIdentifier);
  auto all = events(instant - before, std::max<Instant>(instant + after, latestEnd_), identifiers);
  std::erase_if(all, [&](const Event& event) { return event.eventIdentifier != eventIdentifier; });
  const auto nearest = std::ranges::min_element(
      all, {}, [&](const Event& event) { return std::chrono::abs(event.startDate - instant); });
  if (nearest == all.end()) return std::nullopt;
  return *nearest;
}

Token DesktopEventStore::observeChanges(std::function<void()> block) {
  return observers_.add(std::move(block));
}

}  // namespace valdrix::desktop
