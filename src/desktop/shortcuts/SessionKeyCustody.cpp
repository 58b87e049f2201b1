#include "desktop/shortcuts/SessionKeyCustody.h"

#include <utility>

#include "desktop/session/XdgLoginItem.h"
#include "desktop/shortcuts/GSettings.h"
#include "desktop/shortcuts/KGlobalAccelSettings.h"
#include "desktop/shortcuts/KnownDesktop.h"
#include "desktop/shortcuts/Xfconf.h"

namespace valdrix::desktop {

std::unique_ptr<DesktopKeyCustody> sessionKeyCustody(platform::RunLoop& runLoop, SessionBus& bus) {
  DesktopKeyCustody::Stores stores;
  stores.push_back(std::make_unique<GSettings>());
  stores.push_back(std::make_unique<Xfconf>(bus, runLoop));
  stores.push_back(std::make_unique<KGlobalAccelSettings>(bus));
  return std::make_unique<DesktopKeyCustody>(runLoop, std::move(stores),
                                             knownDesktop(sessionDesktops()),
                                             XdgLoginItem::installedProgram().toStdString());
}

}  // namespace valdrix::desktop
