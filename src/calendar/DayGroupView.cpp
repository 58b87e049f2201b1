#include "calendar/DayGroupView.h"

#include <utility>

#include "calendar/EventRow.h"

namespace valdrix {

using view::Color;
using view::HorizontalAlignment;
using view::View;

namespace {

// All lengths in points.
constexpr double headerSpacing = 4;
constexpr double headerOpacity = 0.5;

View header(const std::string& label) {
  const view::TextStyle style{.font = {.size = 10, .weight = view::FontWeight::semibold},
                              .tracking = 0.6,
                              .lineLimit = 1,
                              .isUppercase = true};
  return view::text(label, style, Color::white(headerOpacity));
}

}  // namespace

View DayGroupView::body() const {
  std::vector<View> rows;
  for (const auto& event : group.events)
    rows.push_back(View(EventRow{event, environment}).id(event.eventIdentifier.value_or("")));
  return view::vStack(
      {.alignment = HorizontalAlignment::leading, .spacing = headerSpacing},
      {
          header(dayLabel(group.day, environment.calendarService->userCalendar())),
          view::vStack({.alignment = HorizontalAlignment::leading, .spacing = rowSpacing},
                       std::move(rows)),
      });
}

}  // namespace valdrix
