#include "desktop/calendarserver/CalendarServerSource.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>

namespace valdrix::desktop {

using platform::Event;
using platform::EventCalendar;
using platform::Instant;

namespace {

using namespace std::chrono_literals;
using std::chrono::days;
using std::chrono::sys_days;

// So that neither the hours nor a midnight that pass ask for anything anew, and what comes after
// the midnight is there before it.
constexpr days marginBefore{1};
constexpr days marginAfter{2};
constexpr days leastMarginAfter{1};
// An event that is clicked on is looked for in two weeks.
constexpr days leastAhead{16};
constexpr Instant firstInstant = sys_days(1900y / 1 / 1);
constexpr Instant lastInstant = sys_days(2999y / 1 / 1);

// A server that ends again and again is started again with growing pauses, and in the end not at
// all.
constexpr double firstPause = 0.25;  // seconds
constexpr int mostReopenings = 9;
constexpr double timeUntilTrusted = 300;
constexpr double restAfterFailure = 600;

bool overlaps(const Event& event, Instant start, Instant end) {
  return event.startDate < end && (event.endDate > start || event.startDate == start);
}

}  // namespace

CalendarServerSource::CalendarServerSource(SessionBus& bus, platform::RunLoop& runLoop,
                                           QtUserCalendar& userCalendar)
    : runLoop_(runLoop),
      userCalendar_(userCalendar),
      bus_(bus),
      worker_(runLoop),
      registry_(bus, {.onChange = [this] { reconcile(); },
                      .onJoin = [this] { closeAll(); },
                      .onStart = [this] { forgetFailures(); },
                      .onEnd = [this](const QString& owner) { handleEnd(owner); },
                      .onFailure = [this] { reopenLater(); }}),
      clockChanges_(userCalendar.observeChanges([this] {
        if (!span_ || span_->local == userCalendar_.zone()) return;
        span_->local = userCalendar_.zone();
        for (const auto& [uid, calendar] : calendars_)
          if (calendar.opened) calendar.opened->show(*span_);
      })) {}

CalendarSource::Reach CalendarServerSource::reach() const {
  return registry_.isPresent() ? Reach::readable : Reach::absent;
}

void CalendarServerSource::start() { registry_.start(); }

void CalendarServerSource::stop() {
  registry_.stop();
  calendars_.clear();
  worker_.forget();
  span_.reset();
  nextRetry_.reset();
  nextReopening_.reset();
}

Token CalendarServerSource::observeChanges(std::function<void()> block) {
  return observers_.add(std::move(block));
}

std::vector<EventCalendar> CalendarServerSource::calendars() const {
  std::vector<EventCalendar> readable;
  for (const auto& calendar : registry_.calendars()) {
    const auto known = calendars_.find(calendar.calendarIdentifier);
    if (known != calendars_.end() && known->second.isReadable) readable.push_back(calendar);
  }
  return readable;
}

std::vector<Event> CalendarServerSource::events(
    Instant start, Instant end, const std::vector<std::string>& calendarIdentifiers) const {
  keep(std::clamp(start, firstInstant, lastInstant), std::clamp(end, firstInstant, lastInstant));
  retryLongFailed();
  std::vector<Event> found;
  for (const auto& [uid, calendar] : calendars_) {
    const bool isWanted = std::ranges::find(calendarIdentifiers, uid) != calendarIdentifiers.end();
    if (!isWanted || !calendar.isReadable || !calendar.events) continue;
    for (const auto& event : *calendar.events) {
      if (event.startDate >= end) break;
      if (!overlaps(event, start, end)) continue;
      found.push_back(event);
      found.back().calendar = calendar.description;
    }
  }
  return found;
}

void CalendarServerSource::keep(Instant start, Instant end) const {
  if (span_ && start >= span_->start && end + leastMarginAfter <= span_->end) return;
  span_ = {start - marginBefore, std::max(end + marginAfter, start + leastAhead),
           userCalendar_.zone()};
  for (const auto& [uid, calendar] : calendars_)
    if (calendar.opened) calendar.opened->show(*span_);
}

void CalendarServerSource::retryLongFailed() const {
  // Asked from time to time anyway, so this needs no timer of its own.
  const bool isAnyDue = std::ranges::any_of(calendars_, [this](const auto& entry) {
    const auto& failure = entry.second.failure;
    return failure && failure->time + restAfterFailure < runLoop_.now();
  });
  if (!isAnyDue || nextRetry_) return;
  auto* self = const_cast<CalendarServerSource*>(this);
  nextRetry_ = runLoop_.scheduleTimer(0, false, [self] {
    self->nextRetry_.reset();
    self->forgetFailures();
    self->registry_.refresh();
  });
}

void CalendarServerSource::reconcile() {
  const auto& listed = registry_.calendars();
  const auto goneCount = std::erase_if(calendars_, [&](const auto& entry) {
    return std::ranges::find(listed, entry.first, &EventCalendar::calendarIdentifier) ==
           listed.end();
  });
  bool isChanged = goneCount > 0;
  for (const auto& description : listed) {
    auto& calendar = calendars_[description.calendarIdentifier];
    isChanged |= calendar.isReadable && calendar.description != description;
    calendar.description = description;
    const auto condition = registry_.condition(description.calendarIdentifier);
    if (calendar.failure && calendar.failure->condition != condition) {
      calendar.failure.reset();
      calendar.opened.reset();
    }
    if (!calendar.opened) open(calendar);
  }
  if (isChanged) observers_.notify();
}

void CalendarServerSource::open(Calendar& calendar) {
  const auto& connection = bus_.connection();
  const auto factory = registry_.factory();
  if (!connection || !factory) return;
  calendar.opened = std::make_unique<CalendarServerCalendar>(
      CalendarServerCalendar::Server{*connection, *factory, registry_.mayStart()},
      calendar.description.calendarIdentifier, runLoop_, worker_,
      CalendarServerCalendar::Callbacks{
          .onOpened = [this, &calendar](bool isOpen) { handleOpened(calendar, isOpen); },
          .onEvents =
              [this, &calendar](const CalendarServerCalendar::Events& events) {
                handleEvents(calendar, events);
              }});
  if (span_) calendar.opened->show(*span_);
}

void CalendarServerSource::handleOpened(Calendar& calendar, bool isOpen) {
  if (!isOpen)
    calendar.failure = {runLoop_.now(),
                        registry_.condition(calendar.description.calendarIdentifier)};
  if (std::exchange(calendar.isReadable, isOpen) != isOpen) observers_.notify();
}

void CalendarServerSource::handleEvents(Calendar& calendar,
                                        const CalendarServerCalendar::Events& events) {
  const auto before = std::exchange(calendar.events, events);
  if (before ? *before != *events : !events->empty()) observers_.notify();
}

void CalendarServerSource::closeAll() {
  for (auto& [uid, calendar] : calendars_) {
    calendar.failure.reset();
    calendar.opened.reset();
  }
}

void CalendarServerSource::handleEnd(const QString& owner) {
  bool isAnyClosed = false;
  for (auto& [uid, calendar] : calendars_) {
    if (!calendar.opened || !calendar.opened->isServedBy(owner)) continue;
    calendar.opened.reset();
    isAnyClosed = true;
  }
  if (isAnyClosed) reopenLater();
}

void CalendarServerSource::forgetFailures() {
  for (auto& [uid, calendar] : calendars_) {
    if (!calendar.failure) continue;
    calendar.failure.reset();
    calendar.opened.reset();
  }
}

void CalendarServerSource::reopenLater() {
  if (nextReopening_) return;
  if (runLoop_.now() - lastReopening_ > timeUntilTrusted) reopenings_ = 0;
  if (reopenings_ >= mostReopenings) return;
  nextReopening_ = runLoop_.scheduleTimer(firstPause * std::exp2(reopenings_++), false, [this] {
    nextReopening_.reset();
    lastReopening_ = runLoop_.now();
    forgetFailures();
    registry_.refresh();
  });
}

}  // namespace valdrix::desktop
