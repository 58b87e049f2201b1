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
  const AppDelegate& app = app_->appDelegate();
  modelTracer_ = std::make_unique<ModelTracer>(app.viewModel(), app.calendarService(),
                                               desktop_.trace, desktop_.runLoop);
  app_->didFinishLaunching();
}

ValdrixApp& ScenarioPlayer::app() {
  if (!isRunning()) throw ScenarioError(0, "le programme n'est pas lancé");
  return *app_;
}

void ScenarioPlayer::quit() {
  (void)app();
  modelTracer_.reset();
  app_.reset();
}

const view::HostingView& ScenarioPlayer::shownContent() const {
  const auto* window = desktop_.panelWindows.frontWindow();
  if (!window || !window->content()) throw ScenarioError(0, "aucun panneau à l'écran");
  return *window->content();
}

void ScenarioPlayer::takePicture(const std::string& name) {
  const auto& content = shownContent();
  desktop_.trace.add("picture " + name);
  if (!takePicture_) return;
  if (const auto problem = takePicture_(name, content); !problem.empty())
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

void ScenarioPlayer::reportTexts() {
  std::string texts;
  for (const auto& item : shownContent().displayList())
    if (item.kind == view::DisplayItem::Kind::text)
      texts += (texts.empty() ? " " : " | ") + item.text;
  desktop_.trace.add("texts" + texts);
}

void ScenarioPlayer::reportSettings() {
  auto* window = desktop_.sceneHost.settingsWindow();
  if (!window || !window->report()) throw ScenarioError(0, "aucune fenêtre de réglages");
}

}  // namespace valdrix::sim
