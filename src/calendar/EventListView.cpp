#include "calendar/EventListView.h"

#include <map>
#include <string>
#include <utility>

#include "calendar/DayGroupView.h"
#include "calendar/MessageView.h"

namespace valdrix {

using view::View;

namespace {

// All lengths in points.
constexpr double sectionSpacing = 10;
constexpr double emptyHeight = 50;
/// A day's name with the gap below it.
constexpr double headerHeight = 18;
constexpr double rowHeight = 24;

View emptyState() {
  return MessageView{.symbolName = "sparkles",
                     .symbolOpacity = 0.5,
                     .message = "Rien à venir",
                     .messageOpacity = 0.75,
                     .detail = "Ton agenda est dégagé pour les 7 prochains jours.",
                     .detailOpacity = 0.45,
                     .detailLineLimit = 2};
}

}  // namespace

double EventListView::estimatedHeight(const std::vector<platform::Event>& events,
                                      const platform::UserCalendar& calendar) {
  if (events.empty()) return emptyHeight;
  std::map<platform::Instant, int> counts;
  for (const auto& event : events) ++counts[calendar.startOfDay(event.startDate)];
  double total = sectionSpacing * static_cast<double>(counts.size() - 1);
  for (const auto& [day, count] : counts)
    total += headerHeight + rowHeight * count + DayGroupView::rowSpacing * (count - 1);
  return total;
}

View EventListView::body() const {
  if (events.empty()) return emptyState();
  std::vector<View> days;
  for (auto& group : groupEventsByDay(events, environment.calendarService->userCalendar())) {
    auto identity = std::to_string(group.day.time_since_epoch().count());
    days.push_back(View(DayGroupView{std::move(group), environment}).id(std::move(identity)));
  }
  return view::vStack({.alignment = view::HorizontalAlignment::leading, .spacing = sectionSpacing},
                      std::move(days));
}

}  // namespace valdrix
