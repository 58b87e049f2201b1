#pragma once

#include "platform/Workspace.h"

namespace valdrix::desktop {

/// Starts the user's programs with an argument vector, never through a shell.
class DesktopWorkspace final : public platform::Workspace {
 public:
  bool open(std::string_view url) override;
};

}  // namespace valdrix::desktop
