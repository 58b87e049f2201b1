#include "app/ValdrixApp.h"

#include "settings/ApplicationInfo.h"
#include "settings/MenuBarContent.h"
#include "settings/SettingsView.h"

namespace valdrix {

namespace {

platform::MenuBarExtra menuBarExtra(AppDelegate& appDelegate, const platform::Platform& platform) {
  const MenuBarContent content{
      .updateCheckService = appDelegate.updateCheckService(),
      .application = platform.application,
      .workspace = platform.workspace,
      .openSettings = [&sceneHost = platform.sceneHost] { sceneHost.openSettings(); }};
  return {.title = std::string(applicationInfo::name),
          .symbol = "rectangle.topthird.inset.filled",
          .content = [content] { return content.body(); }};
}

SettingsView settingsView(AppDelegate& appDelegate, const platform::Platform& platform) {
  return {{.calendarService = appDelegate.calendarService(),
           .launchAtLoginService = appDelegate.launchAtLoginService(),
           .userDefaults = platform.userDefaults,
           .accessibility = platform.accessibility,
           .runLoop = platform.runLoop,
           .workspace = platform.workspace,
           .bundle = platform.bundle}};
}

}  // namespace

ValdrixApp::ValdrixApp(const platform::Platform& platform)
    : appDelegate_(AppDelegate::make(platform)),
      menuBarExtra_(platform.sceneHost.addMenuBarExtra(menuBarExtra(*appDelegate_, platform))),
      settings_(platform.sceneHost.addSettings(settingsView(*appDelegate_, platform).body())) {}

}  // namespace valdrix
