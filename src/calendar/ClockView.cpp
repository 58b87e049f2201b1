#include "calendar/ClockView.h"

#include "calendar/FrenchLocale.h"

namespace valdrix {

using view::Color;
using view::FontWeight;
using view::TextStyle;

namespace {

constexpr double tickInterval = 1;
// In points.
constexpr double lineSpacing = 4;
constexpr double dateOpacity = 0.55;

view::View face(const platform::DateFields& fields) {
  const TextStyle dateStyle{.font = {.size = 11, .weight = FontWeight::semibold},
                            .tracking = 0.6,
                            .lineLimit = 1,
                            .isUppercase = true};
  const TextStyle timeStyle{.font = {.size = 40,
                                     .weight = FontWeight::light,
                                     .design = view::FontDesign::rounded,
                                     .hasMonospacedDigits = true},
                            .lineLimit = 1};
  return view::vStack(
      {.alignment = view::HorizontalAlignment::leading, .spacing = lineSpacing},
      {view::text(frenchLocale.dayText(fields), dateStyle, Color::white(dateOpacity)),
       view::text(frenchLocale.timeText(fields), timeStyle, Color::white())});
}

}  // namespace

view::View ClockView::body() const {
  return view::timeline(tickInterval, [service = calendarService] {
    const auto& calendar = service->userCalendar();
    return face(calendar.fields(calendar.now()));
  });
}

}  // namespace valdrix
