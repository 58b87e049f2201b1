#include "settings/CalendarPermissionRow.h"

#include <optional>
#include <string>

#include "calendar/PermissionPrompt.h"
#include "settings/StatusBadge.h"
#include "settings/SystemSettingsButton.h"

namespace valdrix {

using platform::EventAuthorization;

namespace {

StatusBadge badge(EventAuthorization status) {
  switch (status) {
    case EventAuthorization::notDetermined:
      return {StatusBadge::State::notDetermined, "Non demandé"};
    case EventAuthorization::restricted:
    case EventAuthorization::denied:
    case EventAuthorization::writeOnly:
      return {StatusBadge::State::denied, "Refusé"};
    case EventAuthorization::fullAccess:
      return StatusBadge::granted();
  }
  return {StatusBadge::State::notDetermined, "Inconnu"};
}

std::optional<view::FormRow> button(EventAuthorization status, CalendarService& service) {
  constexpr const char* id = "calendarAccessButton";
  switch (status) {
    case EventAuthorization::notDetermined:
      return view::FormRow{.content = view::PushButton{std::string(allowCalendarAccess),
                                                       [&service] { service.requestAccess(); }},
                           .id = id};
    case EventAuthorization::restricted:
    case EventAuthorization::denied:
    case EventAuthorization::writeOnly:
      return systemSettingsButton(id, [&service] { service.openCalendarPrivacySettings(); });
    case EventAuthorization::fullAccess:
      break;
  }
  return std::nullopt;
}

}  // namespace

std::vector<view::FormRow> CalendarPermissionRow::body() const {
  const auto status = calendarService.authStatus();
  std::vector<view::FormRow> rows{
      {.content = view::LabeledRow{"Accès au calendrier", badge(status).body()},
       .id = "calendarAccess"}};
  if (auto below = button(status, calendarService)) rows.push_back(*std::move(below));
  return rows;
}

}  // namespace valdrix
