#include "desktop/privacy/DesktopIndicator.h"

#include <algorithm>
#include <array>

namespace valdrix::desktop {

namespace {

using Cause = DesktopIndicator::Cause;

struct KnownDesktop {
  const char* name;  ///< in XDG_CURRENT_DESKTOP
  DesktopIndicator indicator;
};

// GNOME's settings offer no way: those keys are in hidden settings with fixed bindings.
const std::array<KnownDesktop, 6>& knownDesktops() {
  static const std::array<KnownDesktop, 6> all{{
      {"GNOME",
       {"GNOME", Cause::ownKeys,
        "Retire-lui ces touches par la commande gsettings set "
        "org.gnome.settings-daemon.plugins.media-keys volume-up-static \"[]\", et de même pour "
        "volume-down-static, volume-mute-static, screen-brightness-up-static et "
        "screen-brightness-down-static."}},
      {"KDE",
       {"Plasma", Cause::ownKeys,
        "Dans la Configuration du système, à la page Raccourcis, retire les touches de « Volume "
        "audio » et de « Gestion de l'énergie »."}},
      {"XFCE",
       {"Xfce", Cause::anyChange,
        "Dans les propriétés du greffon PulseAudio du tableau de bord, décoche les notifications "
        "et les raccourcis clavier ; dans le gestionnaire d'alimentation, la gestion des touches "
        "de luminosité."}},
      {"MATE",
       {"MATE", Cause::ownKeys, "Dans les raccourcis clavier de MATE, désactive ceux du son."}},
      {"X-Cinnamon",
       {"Cinnamon", Cause::ownKeys,
        "Dans les paramètres du clavier, à l'onglet Raccourcis clavier, retire les touches de son "
        "et de luminosité."}},
      {"LXQt",
       {"LXQt", Cause::ownKeys,
        "Dans les raccourcis clavier de LXQt, décoche ceux du son et de la luminosité."}},
  }};
  return all;
}

}  // namespace

const DesktopIndicator* indicatorOf(const QStringList& desktops) {
  for (const auto& desktop : desktops) {
    const auto* const known = std::ranges::find_if(
        knownDesktops(), [&](const KnownDesktop& one) { return desktop == one.name; });
    if (known != knownDesktops().end()) return &known->indicator;
  }
  return nullptr;
}

}  // namespace valdrix::desktop
