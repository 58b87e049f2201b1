#include "calendar/CalendarService.h"

#include <algorithm>
#include <string>
#include <utility>

#include "platform/PrivacyLinks.h"
#include "preferences/PreferenceKeys.h"
#include "preferences/PreferenceRules.h"

namespace valdrix {

using platform::Event;
using platform::EventAuthorization;
using platform::EventCalendar;
using platform::Instant;

namespace {

constexpr double refreshInterval = 60;

/// By start, then by title, whose UTF-8 compares by code point; no title counts as an empty one.
bool startsBefore(const Event& a, const Event& b) {
  if (a.startDate != b.startDate) return a.startDate < b.startDate;
  return a.title.value_or("") < b.title.value_or("");
}

}  // namespace

CalendarService::CalendarService(const Ports& ports)
    : ports_(ports), authStatus_(ports.eventStore.authorizationStatus()) {
  observeStoreChanges();
  userCalendarObserver_ =
      ports_.userCalendar.observeChanges(lifetime_.weak([this] { userCalendarChanged(); }));
  if (authStatus_ != EventAuthorization::fullAccess) return;
  reloadEvents();
  startRefreshTimer();
}

const platform::UserCalendar& CalendarService::userCalendar() const {
  (void)userCalendarChanges_.get();
  return ports_.userCalendar;
}

void CalendarService::requestAccess() {
  // The answer may come on any thread.
  ports_.eventStore.requestFullAccessToEvents(
      [&runLoop = ports_.runLoop, proceed = lifetime_.weak([this] { accessAnswered(); })](bool) {
        runLoop.async(proceed);
      });
}

void CalendarService::accessAnswered() {
  authStatus_ = ports_.eventStore.authorizationStatus();
  if (authStatus_ != EventAuthorization::fullAccess) return;
  reloadEvents();
  startRefreshTimer();
}

void CalendarService::observeStoreChanges() {
  changeObserver_ = ports_.eventStore.observeChanges(lifetime_.weak([this] { storeChanged(); }));
}

void CalendarService::storeChanged() {
  reloadEvents();
  storeChanges_ = storeChanges_ + 1;
}

void CalendarService::userCalendarChanged() {
  reloadEvents();
  userCalendarChanges_ = userCalendarChanges_ + 1;
}

void CalendarService::startRefreshTimer() {
  refreshTimer_.reset();
  refreshTimer_ = ports_.runLoop.scheduleTimer(refreshInterval, true,
                                               lifetime_.weak([this] { reloadEvents(); }));
}

HiddenCalendars CalendarService::readHiddenCalendarIDs() const {
  return HiddenCalendars::parse(
      ports_.userDefaults.stringForKey(preferenceKeys::hiddenCalendarIDs).value_or(""));
}

std::vector<std::string> CalendarService::shownCalendarIdentifiers() const {
  const auto hidden = readHiddenCalendarIDs();
  std::vector<std::string> shown;
  for (auto& calendar : ports_.eventStore.calendars())
    if (!hidden.contains(calendar.calendarIdentifier))
      shown.push_back(std::move(calendar.calendarIdentifier));
  return shown;
}

std::optional<Instant> CalendarService::windowEnd(Instant now) const {
  const auto& calendar = ports_.userCalendar;
  const auto days = preferenceRules::calendarCount(
      ports_.userDefaults.integerForKey(preferenceKeys::calendarWindowDays));
  const auto end = calendar.addDays(calendar.startOfDay(now), days);
  // A day that does not begin at midnight, counted on from, would make all others begin late.
  return end ? std::optional(calendar.startOfDay(*end)) : std::nullopt;
}

void CalendarService::reloadEvents() {
  if (authStatus_ != EventAuthorization::fullAccess) {
    events_ = std::vector<Event>();
    return;
  }
  const Instant now = ports_.userCalendar.now();
  const auto end = windowEnd(now);
  if (!end) return;
  auto events = ports_.eventStore.events(now, *end, shownCalendarIdentifiers());
  std::stable_sort(events.begin(), events.end(), startsBefore);
  const auto most = static_cast<std::uint64_t>(preferenceRules::calendarCount(
      ports_.userDefaults.integerForKey(preferenceKeys::calendarMaxEvents)));
  if (events.size() > most) events.resize(most);
  events_ = std::move(events);
}

std::vector<EventCalendar> CalendarService::availableCalendars() const {
  (void)storeChanges_.get();
  if (authStatus_ != EventAuthorization::fullAccess) return {};
  auto calendars = ports_.eventStore.calendars();
  std::stable_sort(calendars.begin(), calendars.end(),
                   [this](const EventCalendar& a, const EventCalendar& b) {
                     return ports_.collator.compareIgnoringCase(a.title, b.title) < 0;
                   });
  return calendars;
}

void CalendarService::openCalendarPrivacySettings() const {
  ports_.workspace.open(platform::privacyLinks::calendars);
}

}  // namespace valdrix
