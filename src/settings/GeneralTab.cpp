#include "settings/GeneralTab.h"

#include <algorithm>
#include <iterator>

namespace valdrix {

GeneralTab::GeneralTab(const SettingsEnvironment& environment)
    : calendarService_(environment.calendarService),
      launchAtLoginService_(environment.launchAtLoginService),
      calendarPermissionRow_{environment.calendarService},
      accessibilityStatusView_(environment.accessibility, environment.runLoop,
                               environment.workspace) {
  launchAtLoginService_.refreshStatus();
}

view::TabContent GeneralTab::body() const {
  auto permissions = calendarPermissionRow_.body();
  std::ranges::move(accessibilityStatusView_.body(), std::back_inserter(permissions));
  const view::Toggle launchAtLogin{
      .label = {.title = "Lancer valdrix à l'ouverture de session"},
      .isOn = launchAtLoginService_.isEnabled(),
      .set = [&service = launchAtLoginService_](bool isOn) { service.setEnabled(isOn); }};
  return view::Form{{
      {.header = "Démarrage",
       .rows = {{launchAtLogin}},
       .footer = "L'app démarrera automatiquement et placera son icône dans la barre de menu à "
                 "chaque ouverture de session."},
      {.header = "Permissions",
       .rows = std::move(permissions),
       .footer = "L'accès au calendrier sert à afficher tes prochains événements dans le notch. La "
                 "permission Accessibilité permet d'intercepter les touches volume et luminosité "
                 "avant macOS pour afficher les HUDs personnalisés.",
       .link = view::PushButton{"Gérer les permissions…",
                                [&service = calendarService_] {
                                  service.openCalendarPrivacySettings();
                                }}},
  }};
}

}  // namespace valdrix
