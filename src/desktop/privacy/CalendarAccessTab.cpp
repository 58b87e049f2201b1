#include "desktop/privacy/CalendarAccessTab.h"

#include <map>
#include <string>
#include <utility>

namespace valdrix::desktop {

using platform::EventAuthorization;
using Answer = PrivacyRecord::Answer;

namespace {

std::string explanation(Answer answer, EventAuthorization status) {
  if (answer == Answer::none) return "valdrix ne te l'a pas encore demandé.";
  if (answer == Answer::refused) return "Sans cet accès, l'encoche ne montre que l'heure.";
  if (status != EventAuthorization::fullAccess)
    return "Tu l'as permis, mais le système ne laisse pas valdrix lire tes calendriers. Vérifie "
           "les droits de leurs dossiers.";
  return "valdrix les lit sur cet ordinateur, ne les modifie pas et ne les envoie nulle part. Si "
         "tu retires l'accès, la liste se vide aussitôt.";
}

std::string count(int calendars) {
  return std::to_string(calendars) + (calendars < 2 ? " calendrier" : " calendriers");
}

}  // namespace

CalendarAccessTab::CalendarAccessTab(platform::EventStore& store, PrivacyRecord& record,
                                     std::function<void()> onAnswer)
    : store_(store), record_(record), onAnswer_(std::move(onAnswer)) {
  refresh();
  changes_ = store_.observeChanges([this] { refresh(); });
}

void CalendarAccessTab::refresh() {
  state_ = {record_.calendars(), store_.authorizationStatus(), store_.calendars()};
}

// The store tells when the record has changed.
void CalendarAccessTab::answer(bool isAllowed) const {
  record_.setCalendars(isAllowed ? Answer::allowed : Answer::refused);
  onAnswer_();
}

view::TabContent CalendarAccessTab::body() const {
  view::Form form{{access()}};
  const auto& state = state_.get();
  if (state.answer == Answer::allowed && state.status == EventAuthorization::fullAccess)
    form.sections.push_back(sources());
  return form;
}

view::FormSection CalendarAccessTab::access() const {
  const auto& state = state_.get();
  const view::Toggle toggle{.label = {"Lire mes calendriers"},
                            .isOn = state.answer == Answer::allowed,
                            .set = [this](bool isOn) { answer(isOn); }};
  return {.header = "Accès aux calendriers",
          .rows = {{.content = toggle, .id = "access"}},
          .footer = explanation(state.answer, state.status)};
}

view::FormSection CalendarAccessTab::sources() const {
  std::map<std::string, int> calendarsOf;
  for (const auto& calendar : state_.get().calendars)
    ++calendarsOf[calendar.sourceTitle.value_or("Sans compte")];
  view::FormSection section{.header = "Ce qui est lu", .rows = {}};
  for (const auto& [account, calendars] : calendarsOf)
    section.rows.push_back(
        {.content = view::LabeledRow{account, view::ValueText{count(calendars)}}, .id = account});
  if (section.rows.empty())
    section.rows.push_back(
        {.content = view::FormText{"Aucun calendrier trouvé", view::Prominence::secondary}});
  return section;
}

}  // namespace valdrix::desktop
