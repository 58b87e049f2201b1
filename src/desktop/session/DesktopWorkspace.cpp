#include "desktop/session/DesktopWorkspace.h"

namespace valdrix::desktop {

bool DesktopWorkspace::open(std::string_view) { return false; }

}  // namespace valdrix::desktop
