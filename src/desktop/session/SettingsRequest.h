#pragma once

#include <cstddef>
#include <optional>

#include "desktop/session/ActivationToken.h"

namespace valdrix::desktop {

/// The user wants to see the settings, or what the program may do.
struct SettingsRequest {
  enum class Window {
    settings,
    permissions,  ///< the program's privacy page
  };

  /// Which tab, counted from 0; none: the one that was seen last.
  std::optional<std::size_t> tab;
  ActivationToken activation;
  Window window = Window::settings;
};

}  // namespace valdrix::desktop
