#include "sim/ScenarioPlayer.h"

#include <algorithm>
#include <utility>

#include "sim/ScenarioError.h"

namespace valdrix::sim {

ScenarioPlayer::ScenarioPlayer(const view::TextMetrics* textMetrics, TakePicture takePicture)
    : desktop_(textMetrics), takePicture_(std::move(takePicture)) {}

ScenarioPlayer::~ScenarioPlayer() = default;

void ScenarioPlayer::play(const Scenario& scenario) {
  ManualRunLoop& runLoop = desktop_.runLoop;
  for (const auto& step : scenario.steps) {
    try {
      const double wait = step.isRelative ? step.time : step.time - runLoop.now();
      if (wait < 0) throw ScenarioError(0, "ce moment est déjà passé");
      runLoop.advance(wait);
      if (step.action) step.action(*this);
      runLoop.runPending();
    } catch (const ScenarioError& error) {
      throw ScenarioError(step.line, error.what());
    }
  }
}

void ScenarioPlayer::launch() {
  if (isRunning()) throw ScenarioError(0, "le programme est déjà lancé");
  app_ = std::make_unique<ValdrixApp>(desktop_.platform());
  modelTracer_ = std::make_unique<ModelTracer>(app_->appDelegate().viewModel(), desktop_.trace,
                                               desktop_.runLoop);
  app_->didFinishLaunching();
}

void ScenarioPlayer::quit() {
  if (!isRunning()) throw ScenarioError(0, "le programme n'est pas lancé");
  modelTracer_.reset();
  app_.reset();
}

void ScenarioPlayer::takePicture(const std::string& name) {
  const auto* window = desktop_.panelWindows.frontWindow();
  if (!window || !window->content()) throw ScenarioError(0, "aucun panneau à l'écran");
  desktop_.trace.add("picture " + name);
  if (!takePicture_) return;
  if (const auto problem = takePicture_(name, *window->content()); !problem.empty())
    throw ScenarioError(0, problem);
}

void ScenarioPlayer::reportFrames() {
  const auto frames = desktop_.runLoop.frameCount();
  desktop_.trace.add("frames " + std::to_string(frames - reportedFrames_));
  reportedFrames_ = frames;
}

void ScenarioPlayer::reportTimers() {
  desktop_.trace.add("timers " + std::to_string(desktop_.runLoop.timerCount()));
}

}  // namespace valdrix::sim
