#include "desktop/shortcuts/KnownDesktop.h"

#include <algorithm>

#include "desktop/shortcuts/DesktopChanges.h"

namespace valdrix::desktop {

namespace {

using Cause = DesktopIndicator::Cause;
using enum platform::MediaKey;

const KnownDesktop::Keys volumeKeys{volumeUp, volumeDown, mute};
const KnownDesktop::Keys brightnessKeys{brightnessUp, brightnessDown};
const KnownDesktop::Keys allKeys{volumeUp, volumeDown, mute, brightnessUp, brightnessDown};

KnownDesktop gnome() {
  return {
      .id = "GNOME",
      .indicator = {"GNOME", Cause::ownKeys,
                    "La page Clavier de ses Paramètres n'y peut rien : ces raccourcis sont dans "
                    "des réglages cachés. Confie les touches à valdrix, ici ou par la commande "
                    "valdrix keys entrust ; valdrix keys restore remet tout comme avant."},
      .changes = &gnomeChanges,
      .keys = allKeys,
      .sendsCommands = true};
}

KnownDesktop plasma() {
  return {
      .id = "KDE",
      .indicator = {"Plasma", Cause::ownKeys,
                    "Dans la Configuration du système, à la page Raccourcis, retire les touches "
                    "de « Volume audio » et de « Gestion de l'énergie »."},
      .changes = &plasmaChanges,
      .keys = allKeys,
      .leavesToShortcuts = true};
}

KnownDesktop xfce() {
  return {.id = "XFCE",
          .indicator = {"Xfce", Cause::anyChange,
                        "Dans les propriétés du greffon PulseAudio du tableau de bord, décoche "
                        "« Activer les raccourcis clavier pour le contrôle du volume » et "
                        "« Afficher une notification quand le volume change » : c'est pris en "
                        "compte tout de suite."},
          .changes = &xfceChanges,
          .keys = volumeKeys,
          .keptKeys = brightnessKeys,
          .keptNote =
              "Tant que le gestionnaire d'alimentation de Xfce tourne, il garde les touches de "
              "luminosité, même si tu lui dis de ne pas les gérer. Pour les avoir, quitte-le "
              "(xfce4-power-manager --quit) et décoche-le au démarrage de la session."};
}

KnownDesktop mate() {
  return {.id = "MATE",
          .indicator = {"MATE", Cause::ownKeys,
                        "Dans les raccourcis clavier de MATE, choisis « Augmenter le volume », "
                        "« Baisser le volume » et « Sourdine », et efface chacun par la touche "
                        "Retour arrière."},
          .changes = &mateChanges,
          .keys = volumeKeys,
          .keptKeys = brightnessKeys,
          .keptNote =
              "Tant que le gestionnaire d'alimentation de MATE tourne, il peut garder les "
              "touches de luminosité : aucun réglage ne les lui retire."};
}

KnownDesktop cinnamon() {
  return {.id = "X-Cinnamon",
          .indicator = {"Cinnamon", Cause::ownKeys,
                        "Dans les paramètres du clavier, à l'onglet Raccourcis clavier, retire les "
                        "touches de son et de luminosité."},
          .changes = &cinnamonChanges,
          .keys = allKeys};
}

KnownDesktop lxqt() {
  return {.id = "LXQt",
          .indicator = {"LXQt", Cause::ownKeys,
                        "Dans les raccourcis clavier de LXQt, décoche ceux du son et de la "
                        "luminosité."}};
}

KnownDesktop i3() {
  return {
      .id = "i3",
      .indicator = {"i3", Cause::none,
                    "Dans ~/.config/i3/config, retire les lignes « bindsym XF86Audio… » du "
                    "volume et du mode muet, et « bindsym XF86MonBrightness… » s'il y en a, puis "
                    "recharge i3 (i3-msg reload) : valdrix prend les touches tout de suite."}};
}

const std::vector<KnownDesktop>& knownDesktops() {
  static const std::vector<KnownDesktop> all{gnome(),    plasma(), xfce(), mate(),
                                             cinnamon(), lxqt(),   i3()};
  return all;
}

}  // namespace

const KnownDesktop* knownDesktop(const std::string& id) {
  const auto known = std::ranges::find(knownDesktops(), id, &KnownDesktop::id);
  return known == knownDesktops().end() ? nullptr : &*known;
}

const KnownDesktop* knownDesktop(const QStringList& desktops) {
  for (const auto& desktop : desktops)
    if (const auto* const known = knownDesktop(desktop.toStdString())) return known;
  return nullptr;
}

const DesktopIndicator* indicatorOf(const QStringList& desktops) {
  const auto* const known = knownDesktop(desktops);
  return known ? &known->indicator : nullptr;
}

QStringList sessionDesktops() {
  return qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(':', Qt::SkipEmptyParts);
}

}  // namespace valdrix::desktop
