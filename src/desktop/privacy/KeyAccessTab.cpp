#include "desktop/privacy/KeyAccessTab.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <utility>

#include "desktop/session/DesktopNotification.h"

namespace valdrix::desktop {

namespace {

constexpr double lookInterval = 1.5;

struct Key {
  std::uint32_t code;
  const char* name;
  const char* command;
};
constexpr std::array<Key, 5> mediaKeys{{{0, "Volume plus fort", "volume-up"},
                                        {1, "Volume moins fort", "volume-down"},
                                        {7, "Muet", "mute"},
                                        {2, "Luminosité plus forte", "brightness-up"},
                                        {3, "Luminosité moins forte", "brightness-down"}}};

view::FormRow row(const std::string& title, const std::string& value) {
  return {.content = view::LabeledRow{title, view::ValueText{value}}, .id = title};
}

std::optional<std::string> holder(const MediaKeyReport& report, std::uint32_t code) {
  const std::pair<const std::vector<std::uint32_t>&, const char*> holders[]{
      {report.held, "valdrix"},
      {report.missing, "un autre programme"},
      {report.released, "laissée au bureau"},
      {report.absent, "absente du clavier"}};
  for (const auto& [codes, name] : holders)
    if (std::ranges::find(codes, code) != codes.end()) return name;
  return std::nullopt;
}

std::string nameOf(const std::string& backend) {
  return backend == "x11-grabs" ? "serveur X" : backend;
}

}  // namespace

KeyAccessTab::KeyAccessTab(platform::Accessibility& accessibility, platform::RunLoop& runLoop,
                           std::function<MediaKeyReport()> report,
                           const DesktopIndicator* indicator)
    : accessibility_(accessibility),
      report_(std::move(report)),
      indicator_(indicator),
      timer_(runLoop.scheduleTimer(lookInterval, true, [this] { refresh(); })) {
  refresh();
}

void KeyAccessTab::refresh() { state_ = {accessibility_.isProcessTrusted(), report_()}; }

view::TabContent KeyAccessTab::body() const {
  view::Form form{{keys()}};
  if (state_.get().keys.isEmpty()) form.sections.push_back(commands());
  form.sections.push_back(indicator());
  return form;
}

view::FormSection KeyAccessTab::keys() const {
  const auto& [isTrusted, report] = state_.get();
  const char* const interception =
      report.isEmpty() ? "par commandes" : (isTrusted ? "possible" : "impossible");
  view::FormSection section{.header = "Touches de volume et de luminosité",
                            .rows = {row("Interception", interception)},
                            .footer = "valdrix ne reçoit que ces touches, jamais ce que tu tapes."};
  if (!report.isEmpty()) section.rows.push_back(row("Moyen", nameOf(report.backend)));
  for (const auto& key : mediaKeys)
    if (const auto name = holder(report, key.code)) section.rows.push_back(row(key.name, *name));
  if (!report.missing.empty()) section.footer = DesktopNotification::mediaKeysTaken().body;
  return section;
}

view::FormSection KeyAccessTab::commands() const {
  view::FormSection section{
      .header = "Commandes",
      .rows = {},
      .footer =
          "Ton bureau ne laisse aucun programme réserver des touches. Dans ses raccourcis "
          "clavier, associe à chacune sa commande."};
  for (const auto& key : mediaKeys)
    section.rows.push_back(row(key.name, std::string("valdrix key ") + key.command));
  return section;
}

view::FormSection KeyAccessTab::indicator() const {
  const auto& report = state_.get().keys;
  view::FormSection section{.header = "Indicateur du bureau", .rows = {}};
  if (indicator_ == nullptr) {
    section.rows.push_back(
        {.content = view::FormText{"Ce bureau n'en a pas de connu", view::Prominence::secondary}});
    return section;
  }
  const bool isShown = indicator_->cause == DesktopIndicator::Cause::anyChange ||
                       report.isEmpty() || !report.missing.empty();
  section.rows.push_back(
      row(indicator_->desktop, isShown ? "s'affiche aussi" : "ne s'affiche pas"));
  section.footer = isShown ? indicator_->remedy : "Il ne réagit qu'aux touches que le bureau a.";
  return section;
}

}  // namespace valdrix::desktop
