#include "settings/HUDsTab.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string>

#include "preferences/PreferenceKeys.h"
#include "preferences/PreferenceRules.h"

namespace valdrix {

namespace {

constexpr double shortestDuration = 0.4;
constexpr double longestDuration = 3;
constexpr double durationStep = 0.1;
/// From here on (eleven days) nobody would see the end of an indicator.
constexpr double endless = 1e6;

/// With one decimal and a point, whatever the locale.
std::string durationText(double seconds) {
  if (seconds >= endless) return "∞ s";
  std::array<char, 16> buffer{};
  const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), seconds,
                                          std::chars_format::fixed, 1);
  return std::string(buffer.data(), end) + " s";
}

/// The double nearest to a whole number of steps: 3 × 0.1 is more than 0.3.
double onStep(double seconds) { return std::round(seconds * 10) / 10; }

}  // namespace

HUDsTab::HUDsTab(const SettingsEnvironment& environment)
    : preferences_(environment.userDefaults),
      accessibilityStatusView_(environment.accessibility, environment.runLoop,
                               environment.workspace) {}

view::TabContent HUDsTab::body() const {
  return view::Form{{
      {.header = "Volume",
       .rows = {{toggle("Afficher le HUD volume", preferenceKeys::volumeHUDEnabled)}},
       .footer =
           "Quand activé, valdrix affiche son propre HUD à la place de celui de macOS lors de "
           "l'utilisation des touches volume. Désactiver réaffiche le HUD natif."},
      {.header = "Luminosité",
       .rows = {{toggle("Afficher le HUD luminosité", preferenceKeys::brightnessHUDEnabled)}},
       .footer = "S'applique uniquement à l'écran intégré du Mac. Les écrans externes ne sont pas "
                 "pris en charge."},
      {.header = "Comportement",
       .rows = durationRows(),
       .footer = "Temps avant que le HUD ne disparaisse automatiquement après le dernier appui sur "
                 "une touche."},
      {.header = "Permission",
       .rows = accessibilityStatusView_.body(),
       .footer =
           "La permission Accessibilité permet de capter les touches volume et luminosité au "
           "niveau HID, avant que macOS ne soit notifié — c'est ce qui empêche les HUD natifs "
           "d'apparaître."},
  }};
}

view::Toggle HUDsTab::toggle(const char* title, std::string_view key) const {
  return {.label = {.title = title},
          .isOn = preferences_.boolForKey(key),
          .set = [this, key](bool isOn) { preferences_.set(key, isOn); }};
}

std::vector<view::FormRow> HUDsTab::durationRows() const {
  constexpr const char* title = "Durée d'affichage";
  const double duration =
      preferenceRules::hudDuration(preferences_.doubleForKey(preferenceKeys::hudDuration));
  return {{view::LabeledRow{title, view::ValueText{durationText(duration)}}},
          {view::Slider{.title = title,
                        .value = std::clamp(duration, shortestDuration, longestDuration),
                        .minimum = shortestDuration,
                        .maximum = longestDuration,
                        .step = durationStep,
                        .minimumLabel = "0,4 s",
                        .maximumLabel = "3,0 s",
                        .set = [this](double seconds) {
                          preferences_.set(preferenceKeys::hudDuration, onStep(seconds));
                        }}}};
}

}  // namespace valdrix
