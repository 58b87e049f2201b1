#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string_view>

#include "platform/RunLoop.h"
#include "sim/LineTracer.h"
#include "sim/Trace.h"
#include "view/SettingsScene.h"

namespace valdrix::sim {

/// The simulated settings window, closed at first, and the user in front of it. What comes, goes
/// and changes while a tab is visible is traced.
class SimSettingsWindow {
 public:
  SimSettingsWindow(view::SettingsScene scene, Trace& trace, platform::RunLoop& runLoop);
  ~SimSettingsWindow();
  SimSettingsWindow(const SimSettingsWindow&) = delete;
  SimSettingsWindow& operator=(const SimSettingsWindow&) = delete;

  /// As `SceneHost::openSettings`.
  void open(std::optional<std::size_t> tab);
  void close();
  /// Traces all that the visible tab shows. Whether there is one.
  bool report();

  // What the user does on the visible tab; whether there is something of that title to do it with.

  /// Goes to another tab of the open window.
  bool select(std::string_view label);
  bool flip(std::string_view title);
  /// Presses an arrow once.
  bool step(std::string_view title, bool isUp);
  /// Moves the knob to the step nearest to `value`.
  bool slide(std::string_view title, double value);
  /// Presses a button, or follows a link.
  bool click(std::string_view title);

 private:
  void show(std::size_t tab);
  /// The control of that title, as it is described now.
  template <class Control>
  [[nodiscard]] std::optional<Control> find(std::string_view title) const;
  bool follow(std::string_view title);

  view::SettingsScene scene_;
  Trace& trace_;
  platform::RunLoop& runLoop_;
  std::size_t shownTab_ = 0;
  /// The visible tab; nothing while the window is closed.
  std::unique_ptr<view::TabView> tab_;
  std::optional<LineTracer> tracer_;
};

}  // namespace valdrix::sim
