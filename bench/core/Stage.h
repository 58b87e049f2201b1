#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "app/AppDelegate.h"
#include "media/MediaKeyMonitor.h"
#include "notch/NotchViewModel.h"
#include "sim/SimDesktop.h"
#include "view/HostingView.h"

namespace valdrix::bench {

/// A pointer that reports every motion to every monitor, as a desktop does that cannot filter it.
class EveryMotionPointer final : public platform::Pointer {
 public:
  [[nodiscard]] Token addGlobalMonitorForEventsMatchingMask(std::uint32_t,
                                                            std::function<void()> handler) override;
  [[nodiscard]] Token addLocalMonitorForEventsMatchingMask(std::uint32_t,
                                                           std::function<void()>) override {
    return Token([] {});
  }
  [[nodiscard]] view::Point mouseLocation() const override { return location_; }

  void move(view::Point to) {
    location_ = to;
    monitor_();
  }

 private:
  view::Point location_;
  std::function<void()> monitor_ = [] {};
};

/// The whole program on the simulated desktop, with one screen of 1512 × 982 points.
class HoverStage {
 public:
  HoverStage();

  EveryMotionPointer pointer;
  [[nodiscard]] const NotchViewModel& viewModel() const { return app_->viewModel(); }
  /// Lets everything that moves come to rest.
  void settle() { desktop_.runLoop.advance(5); }

 private:
  sim::SimDesktop desktop_;
  platform::Platform platform_;
  std::shared_ptr<AppDelegate> app_;
};

/// A media key monitor whose accepted presses lead nowhere, so that only the decision is left.
class KeyStage {
 public:
  KeyStage();

  /// Decides a press of the key with this code.
  platform::TapResult press(std::uint32_t keyCode, std::uint32_t modifierFlags = 0);

 private:
  class DiscardingRunLoop final : public platform::RunLoop {
   public:
    [[nodiscard]] double now() const override { return 0; }
    [[nodiscard]] Token scheduleTimer(double, bool, std::function<void()>) override {
      return Token([] {});
    }
    void async(std::function<void()>) override {}
  };

  sim::SimDesktop desktop_;
  DiscardingRunLoop runLoop_;
  MediaKeyMonitor monitor_;
};

/// The panel's view with its model, a few events and a clock of its own.
class PanelStage {
 public:
  explicit PanelStage(NotchPresentation presentation);

  /// A hosting view that has never been laid out.
  [[nodiscard]] std::unique_ptr<view::HostingView> makeView();

  NotchViewModel model;
  double now = 0;

 private:
  sim::SimDesktop desktop_;
  std::optional<CalendarService> calendarService_;
  sim::SimTextMetrics metrics_;
};

}  // namespace valdrix::bench
