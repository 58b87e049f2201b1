#include "desktop/privacy/KeyAccessTab.h"

#include <algorithm>
#include <string>
#include <utility>

namespace valdrix::desktop {

using platform::MediaKey;

namespace {

std::string nameOf(MediaKey key) {
  switch (key) {
    case MediaKey::volumeUp:
      return "Volume plus fort";
    case MediaKey::volumeDown:
      return "Volume moins fort";
    case MediaKey::mute:
      return "Muet";
    case MediaKey::brightnessUp:
      return "Luminosité plus forte";
    case MediaKey::brightnessDown:
      break;
  }
  return "Luminosité moins forte";
}

std::string holderOf(KeyState state) {
  switch (state) {
    case KeyState::held:
      return "valdrix";
    case KeyState::taken:
      return "un autre programme";
    case KeyState::withheld:
      return "le bureau";
    case KeyState::absent:
      return "absente du clavier";
    case KeyState::released:
      break;
  }
  return "laissée au bureau";
}

view::FormRow row(const std::string& title, const std::string& value) {
  return {.content = view::LabeledRow{title, view::ValueText{value}}, .id = title};
}

bool isAny(const KeyAccount& account, KeyState state) {
  return std::ranges::any_of(
      account.keys, [state](const auto& entry) { return entry.isWanted && entry.state == state; });
}

std::string interception(const KeyAccount& account) {
  if (account.isComplete()) return "complète";
  return isAny(account, KeyState::held) ? "en partie" : "aucune";
}

}  // namespace

KeyAccessTab::KeyAccessTab(MediaKeyTaps& keys, KeyCustody* custody,
                           const DesktopIndicator* indicator)
    : keys_(keys),
      custody_(custody),
      indicator_(indicator),
      accountObserver_(keys.observeAccount([this] { refresh(); })) {
  if (custody_) custodyObserver_ = custody_->observe([this] { refresh(); });
  refresh();
}

void KeyAccessTab::refresh() {
  state_ = {keys_.account(), custody_ ? custody_->state() : KeyCustody::State()};
}

view::TabContent KeyAccessTab::body() const {
  const auto& state = state_.get();
  view::Form form{{keys()}};
  if (!state.custody.places.empty())
    form.sections.push_back(custody());
  else if (isAny(state.account, KeyState::withheld))
    form.sections.push_back(commands());
  form.sections.push_back(indicator());
  return form;
}

view::FormSection KeyAccessTab::keys() const {
  const auto& account = state_.get().account;
  view::FormSection section{.header = "Touches de volume et de luminosité",
                            .rows = {row("Interception", interception(account))},
                            .footer = "valdrix ne reçoit que ces touches, jamais ce que tu tapes."};
  for (const auto& entry : account.keys)
    section.rows.push_back(row(nameOf(entry.key), holderOf(entry.state)));
  return section;
}

view::FormSection KeyAccessTab::custody() const {
  const auto& custody = state_.get().custody;
  const view::PushButton button =
      custody.isEntrusted
          ? view::PushButton{"Rendre les touches au bureau", [this] { custody_->restore(); }}
          : view::PushButton{"Confier les touches à valdrix", [this] { custody_->entrust(); }};
  const char* const explanation = custody.isEntrusted
                                      ? "Les réglages du bureau laissent ces touches à valdrix. Ce "
                                        "qui s'y trouvait est gardé et "
                                        "remis dès que tu les rends."
                                      : "valdrix retire leurs raccourcis des réglages du bureau, "
                                        "garde ce qui s'y trouvait et le "
                                        "remet quand tu veux.";
  view::FormSection section{.header = "Réglages du bureau",
                            .rows = {{.content = button, .id = "custody"}},
                            .footer = custody.isBusy ? "Un instant…" : explanation};
  if (!custody.note.empty())
    section.rows.push_back({.content = view::FormText{custody.note}, .id = "note"});
  return section;
}

view::FormSection KeyAccessTab::commands() const {
  view::FormSection section{
      .header = "Commandes",
      .rows = {},
      .footer =
          "Ton bureau ne laisse aucun programme réserver ces touches. Dans ses raccourcis "
          "clavier, associe à chacune sa commande."};
  for (const auto& [key, word] : platform::mediaKeys)
    section.rows.push_back(row(nameOf(key), "valdrix key " + std::string(word)));
  return section;
}

view::FormSection KeyAccessTab::indicator() const {
  const auto& account = state_.get().account;
  view::FormSection section{.header = "Indicateur du bureau", .rows = {}};
  if (indicator_ == nullptr) {
    section.rows.push_back(
        {.content = view::FormText{"Ce bureau n'en a pas de connu", view::Prominence::secondary}});
    return section;
  }
  if (indicator_->cause == DesktopIndicator::Cause::none) {
    section.header = indicator_->desktop;
    section.rows.push_back({.content = view::FormText{indicator_->remedy}});
    return section;
  }
  const bool isShown =
      indicator_->cause == DesktopIndicator::Cause::anyChange || !account.isComplete();
  section.rows.push_back(
      row(indicator_->desktop, isShown ? "s'affiche aussi" : "ne s'affiche pas"));
  section.footer = isShown ? indicator_->remedy : "Il ne réagit qu'aux touches que le bureau a.";
  return section;
}

}  // namespace valdrix::desktop
