#include "settings/AboutTab.h"

#include <utility>

#include "settings/ApplicationInfo.h"

namespace valdrix {

namespace {

std::string versionText(const platform::Bundle& bundle) {
  return "Version " + bundle.infoText(platform::Bundle::shortVersionString).value_or("1.0") +
         " (build " + bundle.infoText(platform::Bundle::version).value_or("1") + ")";
}

}  // namespace

AboutTab::AboutTab(const SettingsEnvironment& environment, std::string websiteURL)
    : workspace_(environment.workspace),
      bundle_(environment.bundle),
      websiteURL_(std::move(websiteURL)) {}

view::TabContent AboutTab::body() const {
  return view::AboutPanel{
      .image = "AppIcon",
      .name = std::string(applicationInfo::name),
      .version = versionText(bundle_),
      .description = "Tes prochains événements, le volume et la luminosité dans le notch.",
      .button = {.symbol = "safari",
                 .title = "Visiter le site web",
                 .action = [&workspace = workspace_, url = websiteURL_] { workspace.open(url); }},
      .legalNotice = "© 2026 Les auteurs de valdrix"};
}

}  // namespace valdrix
