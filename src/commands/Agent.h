#pragma once

#include <memory>
#include <optional>
#include <string>

#include "app/ValdrixApp.h"
#include "desktop/DesktopPlatform.h"
#include "desktop/session/AgentObject.h"
#include "desktop/session/QtRunLoop.h"
#include "desktop/session/SessionBus.h"
#include "desktop/session/SettingsRequest.h"
#include "desktop/session/SingleInstance.h"

namespace valdrix::commands {

/// Everything that lives as long as the agent does, in the order in which it is needed. Needs a
/// QApplication; main thread only.
class Agent {
 public:
  Agent() : object_(handlers()) {}

  /// Runs until the application is told to quit, unless another agent runs, which opens that
  /// window then. `opensWindow`: this one begins with it open, too. The process's exit code.
  [[nodiscard]] int run(const desktop::SettingsRequest& window, bool opensWindow);

 private:
  [[nodiscard]] desktop::AgentObject::Handlers handlers();
  /// What `answer` says, once the agent has started.
  template <class F>
  [[nodiscard]] auto whenStarted(F answer);
  /// Has the desktop take back the keys that it leaves, until the next start.
  void leaveKeys();
  void openWindow(const desktop::SettingsRequest& request);
  /// Whether the last debounced key came so shortly before this one that it is being held.
  [[nodiscard]] bool followsQuickly();
  [[nodiscard]] desktop::AgentAnswer pressKey(const desktop::AgentObject::KeyPress& press);

  /// When a debounced key came last, on the run loop's clock.
  double lastDebounced_ = -1e9;
  desktop::QtRunLoop runLoop_;
  desktop::SessionBus bus_{runLoop_};
  std::unique_ptr<desktop::DesktopPlatform> platform_;
  std::optional<ValdrixApp> app_;
  desktop::AgentObject object_;
  desktop::SingleInstance instance_{bus_, object_};
};

}  // namespace valdrix::commands
