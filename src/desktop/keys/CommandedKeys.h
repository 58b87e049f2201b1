#pragma once

#include "desktop/keys/KeySource.h"

namespace valdrix::desktop {

/// Media keys under a window system that gives keys to no program: none arrives, but the user can
/// bind commands to them. The last source to be asked.
class CommandedKeys final : public KeySource {
 public:
  [[nodiscard]] std::string name() const override { return "commands"; }
  [[nodiscard]] bool offers(platform::MediaKey) const override { return true; }
  void hold(const std::set<platform::MediaKey>&) override {}
  [[nodiscard]] KeyState state(platform::MediaKey) const override { return KeyState::withheld; }
};

}  // namespace valdrix::desktop
