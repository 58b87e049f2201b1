#pragma once

#include "platform/SceneHost.h"
#include "sim/Trace.h"

namespace valdrix::sim {

/// The simulated desktop's menu bar and settings window.
class SimSceneHost final : public platform::SceneHost {
 public:
  explicit SimSceneHost(Trace& trace) : trace_(trace) {}

  [[nodiscard]] Token addMenuBarExtra(platform::MenuBarExtra /*extra*/) override { return {}; }
  [[nodiscard]] Token addSettings(view::SettingsScene /*scene*/) override { return {}; }
  void openSettings(std::optional<std::size_t> /*tab*/) override { trace_.add("settings open"); }

 private:
  Trace& trace_;
};

}  // namespace valdrix::sim
