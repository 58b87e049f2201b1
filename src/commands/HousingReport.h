#pragma once

#include <string>

#include "desktop/DesktopPlatform.h"
#include "desktop/session/AgentAnswer.h"
#include "view/Geometry.h"

namespace valdrix::commands {

/// What is known of every screen and its camera housing, and what is wrong with what the user wrote
/// of them: lines of French.
[[nodiscard]] std::string housingReport(const desktop::DesktopPlatform& platform);

/// Shows a housing of that size, in points, on the screen that would have it, and answers with what
/// the user's file would have to say of it.
[[nodiscard]] desktop::AgentAnswer previewHousing(desktop::DesktopPlatform& platform,
                                                  view::Size size);

}  // namespace valdrix::commands
