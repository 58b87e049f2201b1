#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "app/ValdrixApp.h"
#include "sim/ModelTracer.h"
#include "sim/Scenario.h"
#include "sim/SimDesktop.h"

namespace valdrix::sim {

/// Plays scenarios: runs the real program on a simulated desktop, does to that desktop what the
/// scenario says at its times, and leaves in the desktop's trace what came of it.
class ScenarioPlayer {
 public:
  /// Shows what is on the screen now under a file name, or says why it cannot; empty is success.
  using TakePicture =
      std::function<std::string(const std::string& name, const view::HostingView& content)>;

  /// `textMetrics` as for `SimDesktop`. Without `takePicture` pictures are only traced.
  explicit ScenarioPlayer(const view::TextMetrics* textMetrics = nullptr,
                          TakePicture takePicture = {});
  ~ScenarioPlayer();
  ScenarioPlayer(const ScenarioPlayer&) = delete;
  ScenarioPlayer& operator=(const ScenarioPlayer&) = delete;

  /// Plays `scenario` to the end of its last step. Throws a `ScenarioError`, with the line, for a
  /// step that cannot be done.
  void play(const Scenario& scenario);

  [[nodiscard]] SimDesktop& desktop() { return desktop_; }

  // What only steps need.

  void launch();
  /// Ends the program by destroying it.
  void quit();
  [[nodiscard]] bool isRunning() const { return app_ != nullptr; }
  /// The running program. Throws a `ScenarioError` when it does not run.
  [[nodiscard]] ValdrixApp& app();
  void takePicture(const std::string& name);
  /// Traces how many frames were asked for since the last report.
  void reportFrames();
  /// Traces how many timers run.
  void reportTimers();
  /// Traces all texts that the panel shows, from back to front.
  void reportTexts();
  /// Traces all that the settings window shows.
  void reportSettings();

 private:
  [[nodiscard]] const view::HostingView& shownContent() const;

  SimDesktop desktop_;
  TakePicture takePicture_;
  std::uint64_t reportedFrames_ = 0;
  std::unique_ptr<ValdrixApp> app_;
  std::unique_ptr<ModelTracer> modelTracer_;
};

}  // namespace valdrix::sim
