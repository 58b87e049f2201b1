#include "settings/CalendarTab.h"

#include <string_view>
#include <utility>

#include "preferences/PreferenceKeys.h"
#include "preferences/PreferenceRules.h"

namespace valdrix {

namespace {

constexpr view::Color grey{0.5, 0.5, 0.5};
constexpr const char* day = " jour";

/// "s" behind a noun of which there are so many.
const char* plural(std::int64_t count) { return count >= 2 ? "s" : ""; }

std::string dayCount(std::int64_t days) { return std::to_string(days) + day + plural(days); }

std::string summary(std::int64_t events, std::int64_t days) {
  return "Le notch affichera jusqu'à " + std::to_string(events) + " événement" + plural(events) +
         " à venir dans les " + std::to_string(days) + " prochain" + plural(days) + day +
         plural(days) + ".";
}

view::Stepper stepper(std::string title, std::int64_t value, std::int64_t maximum,
                      std::string valueText, const BoundPreferences& preferences,
                      std::string_view key) {
  return {.title = std::move(title),
          .valueText = std::move(valueText),
          .value = value,
          .minimum = 1,
          .maximum = maximum,
          .set = [&preferences, key](std::int64_t wanted) { preferences.set(key, wanted); }};
}

}  // namespace

CalendarTab::CalendarTab(const SettingsEnvironment& environment)
    : calendarService_(environment.calendarService),
      calendarPermissionRow_{environment.calendarService},
      preferences_(environment.userDefaults),
      selectionObserver_([this] { preferencesChanged(); }),
      latestSelection_(selectionObserver_.track([this] { return selection(); })) {}

CalendarTab::Selection CalendarTab::selection() const {
  return {
      preferences_.integerForKey(preferenceKeys::calendarMaxEvents),
      preferences_.integerForKey(preferenceKeys::calendarWindowDays),
      HiddenCalendars::parse(hiddenCalendarIDsCSV()),
  };
}

std::string CalendarTab::hiddenCalendarIDsCSV() const {
  return preferences_.stringForKey(preferenceKeys::hiddenCalendarIDs);
}

void CalendarTab::preferencesChanged() {
  auto now = selectionObserver_.track([this] { return selection(); });
  if (now == latestSelection_) return;
  latestSelection_ = std::move(now);
  calendarService_.reloadEvents();
}

view::TabContent CalendarTab::body() const {
  view::Form form{{
      {.header = "Accès",
       .rows = calendarPermissionRow_.body(),
       .footer = "valdrix a besoin d'un accès au calendrier pour afficher tes événements à venir "
                 "dans le notch."},
      displaySection(),
  }};
  if (calendarService_.authStatus() == platform::EventAuthorization::fullAccess)
    form.sections.push_back(calendarSection());
  return form;
}

view::FormSection CalendarTab::displaySection() const {
  // Shown as they count, so that the controls never say anything else than the list does.
  const auto stored = selection();
  const auto events = preferenceRules::calendarCount(stored.maxEvents);
  const auto days = preferenceRules::calendarCount(stored.windowDays);
  return {.header = "Affichage",
          .rows = {{stepper("Nombre maximum d'événements", events, 10, std::to_string(events),
                            preferences_, preferenceKeys::calendarMaxEvents)},
                   {stepper("Fenêtre", days, 7, dayCount(days), preferences_,
                            preferenceKeys::calendarWindowDays)}},
          .footer = summary(events, days)};
}

view::FormSection CalendarTab::calendarSection() const {
  const auto hidden = HiddenCalendars::parse(hiddenCalendarIDsCSV());
  view::FormSection section{
      .header = "Calendriers visibles",
      .rows = {},
      .footer = "Décoche un calendrier pour retirer ses événements de l'aperçu dans le notch."};
  for (const auto& calendar : calendarService_.availableCalendars())
    section.rows.push_back(calendarRow(calendar, hidden.contains(calendar.calendarIdentifier)));
  if (section.rows.empty())
    section.rows.push_back(
        {view::FormText{"Aucun calendrier disponible.", view::Prominence::secondary}});
  return section;
}

view::FormRow CalendarTab::calendarRow(const platform::EventCalendar& calendar,
                                       bool isHidden) const {
  const auto& id = calendar.calendarIdentifier;
  view::ToggleLabel label{.title = calendar.title, .dot = calendar.color.value_or(grey)};
  if (calendar.sourceTitle) label.detail = "— " + *calendar.sourceTitle;
  return {.content = view::Toggle{.label = std::move(label),
                                  .isOn = !isHidden,
                                  .set = [this, id](bool isOn) { setHidden(id, !isOn); }},
          .id = id};
}

void CalendarTab::setHidden(const std::string& calendarID, bool isHidden) const {
  auto hidden = HiddenCalendars::parse(hiddenCalendarIDsCSV());
  hidden.setHidden(calendarID, isHidden);
  preferences_.set(preferenceKeys::hiddenCalendarIDs, hidden.serialized());
}

}  // namespace valdrix
