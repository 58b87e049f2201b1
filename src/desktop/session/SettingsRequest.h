#pragma once

#include <cstddef>
#include <optional>

#include "desktop/session/ActivationToken.h"

namespace valdrix::desktop {

/// The user wants to see the settings.
struct SettingsRequest {
  /// Which tab, counted from 0; none: the one that was seen last.
  std::optional<std::size_t> tab;
  ActivationToken activation;
};

}  // namespace valdrix::desktop
