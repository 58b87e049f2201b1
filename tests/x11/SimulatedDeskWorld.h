#pragma once

#include <utility>

#include "sim/SimDesktop.h"
#include "tests/x11/DeskWorld.h"

namespace valdrix::tests {

class SimulatedDeskWorld final : public DeskWorld {
 public:
  SimulatedDeskWorld() { setMonitors({{"screen", 1500, 1000}}); }

  platform::Screens& screens() override { return desktop_.screens; }
  platform::PanelWindows& panelWindows() override { return desktop_.panelWindows; }
  platform::Pointer& pointer() override { return desktop_.pointer; }
  platform::Cursor& cursor() override { return desktop_.cursor; }
  view::HostingView::Services services() override {
    return {.textMetrics = desktop_.platform().textMetrics,
            .now = [this] { return desktop_.runLoop.now(); },
            .scheduleRepeatingTimer =
                [this](double interval, std::function<void()> block) {
                  return desktop_.runLoop.scheduleTimer(interval, true, std::move(block));
                }};
  }

  void move(view::Point to) override { desktop_.pointer.move(to); }
  void drag(const std::vector<view::Point>& path, bool withRightButton) override {
    for (const auto& point : path) desktop_.pointer.drag(point, withRightButton);
  }
  bool clickReachesDesktop() override { return !desktop_.pointer.click(); }
  void settle() override { desktop_.runLoop.runPending(); }
  bool runUntilStill(view::HostingView& content) override {
    for (int frames = 0; frames < 600 && content.needsFrame(); ++frames)
      desktop_.runLoop.advance(1.0 / 60);
    return !content.needsFrame();
  }
  std::uint64_t framesDrawn(platform::PanelWindow& window) override {
    return dynamic_cast<sim::SimPanelWindow&>(window).framesDrawn();
  }
  void setMonitors(const std::vector<Monitor>& monitors) override {
    std::vector<platform::Screen> screens;
    double x = 0;
    for (const auto& monitor : monitors) {
      // The tops of all screens are on one line.
      const double y = monitors.front().height - monitor.height;
      screens.push_back({.name = monitor.name,
                         .frame = {x, y, static_cast<double>(monitor.width),
                                   static_cast<double>(monitor.height)}});
      x += monitor.width;
    }
    desktop_.screens.setScreens(screens);
  }

 private:
  sim::SimDesktop desktop_;
};

}  // namespace valdrix::tests
