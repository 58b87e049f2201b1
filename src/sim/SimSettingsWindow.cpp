#include "sim/SimSettingsWindow.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "sim/SceneLines.h"

namespace valdrix::sim {

namespace {

const std::string& titleOf(const view::Toggle& toggle) { return toggle.label.title; }
const std::string& titleOf(const auto& control) { return control.title; }

}  // namespace

SimSettingsWindow::SimSettingsWindow(view::SettingsScene scene, Trace& trace,
                                     platform::RunLoop& runLoop)
    : scene_(std::move(scene)), trace_(trace), runLoop_(runLoop) {}

SimSettingsWindow::~SimSettingsWindow() { close(); }

void SimSettingsWindow::open(std::optional<std::size_t> tab) {
  if (scene_.tabs.empty()) return;
  const bool wasOpen = tab_ != nullptr;
  trace_.add(wasOpen ? "settings front" : "settings open");
  const auto wanted = std::min(tab.value_or(shownTab_), scene_.tabs.size() - 1);
  if (!wasOpen || wanted != shownTab_) show(wanted);
}

void SimSettingsWindow::close() {
  if (!tab_) return;
  tracer_.reset();
  tab_.reset();
  trace_.add("settings closed");
}

bool SimSettingsWindow::report() {
  if (tracer_) tracer_->report();
  return tracer_.has_value();
}

void SimSettingsWindow::show(std::size_t tab) {
  tracer_.reset();
  tab_.reset();
  shownTab_ = tab;
  trace_.add("settings tab " + scene_.tabs[tab].label);
  tab_ = scene_.tabs[tab].make();
  tracer_.emplace(
      "settings", [this] { return linesOf(tab_->body()); }, trace_, runLoop_);
  tracer_->begin();
}

bool SimSettingsWindow::select(std::string_view label) {
  const auto tab = std::ranges::find(scene_.tabs, label, &view::Tab::label);
  if (!tab_ || tab == scene_.tabs.end()) return false;
  const auto wanted = static_cast<std::size_t>(tab - scene_.tabs.begin());
  if (wanted != shownTab_) show(wanted);
  return true;
}

template <class Control>
std::optional<Control> SimSettingsWindow::find(std::string_view title) const {
  if (!tab_) return std::nullopt;
  const auto content = tab_->body();
  const auto* form = std::get_if<view::Form>(&content);
  if (!form) return std::nullopt;
  for (const auto& section : form->sections)
    for (const auto& row : section.rows)
      if (const auto* control = std::get_if<Control>(&row.content))
        if (titleOf(*control) == title) return *control;
  return std::nullopt;
}

bool SimSettingsWindow::flip(std::string_view title) {
  const auto toggle = find<view::Toggle>(title);
  if (toggle) toggle->set(!toggle->isOn);
  return toggle.has_value();
}

bool SimSettingsWindow::step(std::string_view title, bool isUp) {
  const auto stepper = find<view::Stepper>(title);
  if (!stepper) return false;
  const auto near = std::clamp(stepper->value, stepper->minimum - stepper->step,
                               stepper->maximum + stepper->step);
  const auto wanted = std::clamp(near + (isUp ? stepper->step : -stepper->step), stepper->minimum,
                                 stepper->maximum);
  if (wanted != stepper->value) stepper->set(wanted);
  return true;
}

bool SimSettingsWindow::slide(std::string_view title, double value) {
  const auto slider = find<view::Slider>(title);
  if (!slider) return false;
  const double steps = std::round((value - slider->minimum) / slider->step);
  slider->set(std::clamp(slider->minimum + steps * slider->step, slider->minimum, slider->maximum));
  return true;
}

bool SimSettingsWindow::follow(std::string_view title) {
  const auto content = tab_->body();
  const auto* form = std::get_if<view::Form>(&content);
  if (!form) return false;
  for (const auto& section : form->sections) {
    if (!section.link || section.link->title != title) continue;
    section.link->action();
    return true;
  }
  return false;
}

bool SimSettingsWindow::click(std::string_view title) {
  if (const auto button = find<view::PushButton>(title)) {
    button->action();
    return true;
  }
  if (!tab_) return false;
  if (follow(title)) return true;
  const auto content = tab_->body();
  const auto* panel = std::get_if<view::AboutPanel>(&content);
  if (!panel || panel->button.title != title) return false;
  panel->button.action();
  return true;
}

}  // namespace valdrix::sim
