#pragma once

#include <memory>

#include "desktop/session/SessionBus.h"
#include "desktop/shortcuts/DesktopKeyCustody.h"
#include "platform/RunLoop.h"

namespace valdrix::desktop {

/// The custody of the keys of the desktop that this process runs on. Both outlive it.
[[nodiscard]] std::unique_ptr<DesktopKeyCustody> sessionKeyCustody(platform::RunLoop& runLoop,
                                                                   SessionBus& bus);

}  // namespace valdrix::desktop
