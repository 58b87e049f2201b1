#include "desktop/icalendar/IcalendarText.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "desktop/icalendar/EventSeries.h"
#include "desktop/icalendar/IcalReader.h"

namespace valdrix::desktop {

using platform::Instant;

namespace {

/// The range of times that can be asked for, so that no arithmetic on them overflows.
constexpr Instant earliest = std::chrono::sys_days(std::chrono::year(1) / 1 / 2);
constexpr Instant latest = std::chrono::sys_days(std::chrono::year(9999) / 1 / 1);

/// Of work that no budget pays for.
constexpr std::int64_t stepsPerEvent = 1000;

}  // namespace

class IcalendarText::Events {
 public:
  Events(std::vector<IcalEvent> events, Interruption& interruption);

  /// More for more events, up to two seconds.
  [[nodiscard]] WorkBudget budget(Interruption& interruption) const {
    const auto steps = 20'000'000 + 20'000 * static_cast<std::int64_t>(series.size());
    return {std::min<std::int64_t>(steps, 200'000'000), interruption};
  }

  std::vector<EventSeries> series;

 private:
  void add(IcalEvent event);

  /// Which series has a UID, while they are gathered.
  std::unordered_map<std::string, std::size_t> byUid_;
};

IcalendarText::Events::Events(std::vector<IcalEvent> events, Interruption& interruption) {
  series.reserve(events.size());
  for (IcalEvent& event : events) {
    if (interruption.isDueAfter(stepsPerEvent)) break;
    add(std::move(event));
  }
  byUid_ = {};
}

void IcalendarText::Events::add(IcalEvent event) {
  if (event.uid) {
    const auto [known, isNew] = byUid_.try_emplace(*event.uid, series.size());
    if (!isNew) {
      auto another = series[known->second].merge(std::move(event));
      if (another) series.emplace_back(std::move(*another));
      return;
    }
  }
  series.emplace_back(std::move(event));
}

IcalendarText::IcalendarText(std::unique_ptr<Events> events) : events_(std::move(events)) {}
IcalendarText::IcalendarText(IcalendarText&&) noexcept = default;
IcalendarText& IcalendarText::operator=(IcalendarText&&) noexcept = default;
IcalendarText::~IcalendarText() = default;

IcalendarText IcalendarText::parse(std::string_view text, const IsEnding& isEnding) {
  if (text.size() > maximumSize) text = {};
  Interruption interruption(isEnding);
  return IcalendarText(std::make_unique<Events>(readIcalEvents(text, interruption), interruption));
}

bool IcalendarText::isEmpty() const { return events_->series.empty(); }

std::vector<platform::Event> IcalendarText::occurrences(Instant start, Instant end,
                                                        const QTimeZone& local,
                                                        const IsEnding& isEnding) const {
  constexpr std::size_t maximumCount = 100'000;
  const EventSeries::Window window{.start = std::clamp(start, earliest, latest),
                                   .end = std::clamp(end, earliest, latest)};
  const auto zone = CalendarZone::of(local);
  Interruption interruption(isEnding);
  WorkBudget budget = events_->budget(interruption);
  std::vector<platform::Event> events;
  for (const EventSeries& series : events_->series) {
    if (events.size() >= maximumCount || interruption.isDueAfter(stepsPerEvent)) break;
    series.collect(window, *zone, budget, events);
  }
  return events;
}

std::optional<Instant> IcalendarText::nextStart(Instant after, const QTimeZone& local,
                                                const IsEnding& isEnding) const {
  const Instant from = std::clamp(after, earliest, latest);
  const auto zone = CalendarZone::of(local);
  Interruption interruption(isEnding);
  WorkBudget budget = events_->budget(interruption);
  std::optional<Instant> next;
  for (const EventSeries& series : events_->series) {
    if (interruption.isDueAfter(stepsPerEvent)) break;
    const auto start = series.nextStart(from, *zone, budget);
    if (start) next = std::min(next.value_or(*start), *start);
  }
  return next;
}

}  // namespace valdrix::desktop
