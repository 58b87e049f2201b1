#include "desktop/session/CompiledBundle.h"

namespace valdrix::desktop {

std::optional<std::string> CompiledBundle::infoText(std::string_view key) const {
  if (key == shortVersionString) return VALDRIX_VERSION;
  if (key == version) return VALDRIX_BUILD_NUMBER;
  return std::nullopt;
}

}  // namespace valdrix::desktop
