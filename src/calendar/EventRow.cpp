#include "calendar/EventRow.h"

#include <algorithm>

#include "calendar/FrenchLocale.h"
#include "view/Transaction.h"

namespace valdrix {

using view::Alignment;
using view::Color;
using view::FontWeight;
using view::TextStyle;
using view::View;

namespace {

// All lengths in points.
constexpr double childSpacing = 10;
constexpr view::FrameSize barSize{.width = 3, .height = 14};
constexpr double barRadius = 1.5;
constexpr double minTimeWidth = 100;
constexpr double verticalPadding = 4;
constexpr double horizontalPadding = 8;
constexpr double cornerRadius = 6;
constexpr double borderWidth = 0.5;
constexpr double timeOpacity = 0.65;
constexpr double hoverOpacity = 0.14;
constexpr double hoverBorderOpacity = 0.18;
constexpr view::EaseOut hoverAnimation{.duration = 0.12};

/// For calendars that have no colour.
constexpr Color standardBlue{10 / 255.0, 132 / 255.0, 1};

constexpr std::string_view eventLink = "ical://ekevent/";
constexpr std::string_view dayLink = "ical://date/";

std::string shownTitle(const platform::Event& event) {
  return event.title.value_or("").empty() ? "(sans titre)" : *event.title;
}

Color barColor(const platform::Event& event) {
  const auto color = event.calendar ? event.calendar->color : std::nullopt;
  return color.value_or(standardBlue);
}

View highlight(bool isShown) {
  const view::RoundedRectangle area{.cornerRadius = cornerRadius, .isContinuous = true};
  const view::RoundedRectangle border{
      .cornerRadius = cornerRadius, .isContinuous = true, .inset = borderWidth / 2};
  return view::zStack(
      Alignment::center,
      {view::fill(area, Color::white(isShown ? hoverOpacity : 0)),
       view::stroke(border, Color::white(isShown ? hoverBorderOpacity : 0), borderWidth)});
}

/// Year, month and day without separators: "20261118".
std::string compactDate(const platform::DateFields& fields) {
  const auto padded = [](std::int64_t number, std::size_t length) {
    const auto digits = std::to_string(number);
    return std::string(length - std::min(length, digits.size()), '0') + digits;
  };
  return padded(fields.year, 4) + padded(fields.month, 2) + padded(fields.day, 2);
}

}  // namespace

std::string EventRow::timeText(const platform::Event& event,
                               const platform::UserCalendar& calendar) {
  if (event.isAllDay) return "journée";
  const auto time = [&](platform::Instant instant) {
    return frenchLocale.timeText(calendar.fields(instant));
  };
  return time(event.startDate) + " – " + time(event.endDate);
}

void EventRow::openInCalendar() const {
  const auto& identifier = event.eventIdentifier;
  if (!identifier) return;
  if (event.hasRecurrenceRules) return openOccurrenceInCalendar(*identifier, event.startDate);
  environment.workspace->open(std::string(eventLink) + *identifier);
}

void EventRow::openOccurrenceInCalendar(const std::string& identifier,
                                        platform::Instant date) const {
  const auto day = compactDate(environment.calendarService->userCalendar().fields(date));
  environment.workspace->open(std::string(dayLink) + day);
  environment.workspace->open(std::string(eventLink) + identifier);
}

View EventRow::label() const {
  const TextStyle timeStyle{
      .font = {.size = 11, .weight = FontWeight::medium, .hasMonospacedDigits = true}};
  const TextStyle titleStyle{.font = {.size = 12, .weight = FontWeight::medium}, .lineLimit = 1};
  const auto& calendar = environment.calendarService->userCalendar();
  return view::hStack(
      {.spacing = childSpacing},
      {
          view::fill(view::RoundedRectangle{.cornerRadius = barRadius, .isContinuous = true},
                     barColor(event))
              .frame(barSize),
          view::text(timeText(event, calendar), timeStyle, Color::white(timeOpacity))
              .frame(view::FrameLimits{.minWidth = minTimeWidth, .alignment = Alignment::leading}),
          view::text(shownTitle(event), titleStyle, Color::white()),
          view::spacer(),
      });
}

View EventRow::body(State& state) const {
  return view::button(
             [self = *this] { self.openInCalendar(); },
             label()
                 .padding({verticalPadding, horizontalPadding, verticalPadding, horizontalPadding})
                 .background(highlight(state.isHovered))
                 .contentShape())
      .help(event.title.value_or(""))
      .onHover([&state, cursor = environment.cursor](bool isInside) {
        view::withAnimation(hoverAnimation, [&] { state.isHovered = isInside; });
        if (isInside)
          cursor->pushPointingHand();
        else
          cursor->pop();
      });
}

}  // namespace valdrix
