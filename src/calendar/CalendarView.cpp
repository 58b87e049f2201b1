#include "calendar/CalendarView.h"

#include "calendar/ClockView.h"
#include "calendar/EventListView.h"
#include "calendar/PermissionPrompt.h"

namespace valdrix {

using platform::EventAuthorization;
using view::Color;
using view::View;

namespace {

// In points.
constexpr double columnSpacing = 18;
constexpr double dividerWidth = 1;
constexpr double dividerOpacity = 0.08;

}  // namespace

View CalendarView::content() const {
  const CalendarService& service = *environment.calendarService;
  switch (service.authStatus()) {
    case EventAuthorization::notDetermined:
      return PermissionPrompt{.message = std::string(allowCalendarAccess)};
    case EventAuthorization::fullAccess:
      return EventListView{.events = service.events(), .environment = environment};
    case EventAuthorization::restricted:
    case EventAuthorization::denied:
    case EventAuthorization::writeOnly:
      break;
  }
  return PermissionPrompt{.message = "Accès au calendrier refusé"};
}

View CalendarView::body() const {
  return view::hStack(
      {.alignment = view::VerticalAlignment::top, .spacing = columnSpacing},
      {
          View(ClockView{environment.calendarService}).fixedSize(),
          view::fill(view::Rectangle{}, Color::white(dividerOpacity))
              .frame(view::FrameSize{.width = dividerWidth}),
          content().frame(view::FrameLimits{.maxWidth = view::ProposedSize::infinity,
                                            .alignment = view::Alignment::topLeading}),
      });
}

}  // namespace valdrix
