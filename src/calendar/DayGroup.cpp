#include "calendar/DayGroup.h"

#include <algorithm>
#include <map>
#include <utility>

#include "calendar/FrenchLocale.h"

namespace valdrix {

using platform::Event;
using platform::Instant;

std::vector<DayGroup> groupEventsByDay(const std::vector<Event>& events,
                                       const platform::UserCalendar& calendar) {
  std::map<Instant, std::vector<Event>> days;
  for (const auto& event : events) days[calendar.startOfDay(event.startDate)].push_back(event);
  std::vector<DayGroup> groups;
  for (auto& [day, eventsOfDay] : days) {
    std::ranges::stable_sort(eventsOfDay, {}, &Event::startDate);
    groups.push_back({day, std::move(eventsOfDay)});
  }
  return groups;
}

std::string dayLabel(Instant day, const platform::UserCalendar& calendar) {
  const Instant startOfDay = calendar.startOfDay(day);
  const Instant startOfToday = calendar.startOfDay(calendar.now());
  if (startOfDay == startOfToday) return "aujourd'hui";
  const auto tomorrow = calendar.addDays(startOfToday, 1);
  if (tomorrow && startOfDay == calendar.startOfDay(*tomorrow)) return "demain";
  return frenchLocale.dayText(calendar.fields(day));
}

}  // namespace valdrix
