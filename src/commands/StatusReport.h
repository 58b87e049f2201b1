#pragma once

#include <string>

#include "app/AppDelegate.h"
#include "desktop/DesktopPlatform.h"

namespace valdrix::commands {

/// The agent's observable state as indented JSON in UTF-8.
[[nodiscard]] std::string statusReport(const AppDelegate& app,
                                       const desktop::DesktopPlatform& platform);

}  // namespace valdrix::commands
