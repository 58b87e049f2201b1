#include "bench/core/Stage.h"

#include <utility>

#include "notch/NotchRootView.h"
#include "preferences/PreferenceDefaults.h"

namespace valdrix::bench {

namespace {

constexpr view::Size windowSize{720, 1000};

/// `ports` with another pointer.
platform::Platform withPointer(const platform::Platform& ports, platform::Pointer& pointer) {
  return {ports.runLoop,         ports.application, ports.userDefaults,  ports.screens,
          ports.panelWindows,    pointer,           ports.cursor,        ports.haptics,
          ports.accessibility,   ports.eventTaps,   ports.audioHardware, ports.displays,
          ports.displayServices, ports.textMetrics};
}

}  // namespace

Token EveryMotionPointer::addGlobalMonitorForEventsMatchingMask(std::uint32_t,
                                                                std::function<void()> handler) {
  monitor_ = std::move(handler);
  return Token([this] { monitor_ = [] {}; });
}

HoverStage::HoverStage() : platform_(withPointer(desktop_.platform(), pointer)) {
  desktop_.screens.plugIn({.name = "eDP-1", .frame = {0, 0, 1512, 982}});
  desktop_.audioHardware.addDevice("speakers", 0.5F);
  app_ = AppDelegate::make(platform_);
  app_->applicationDidFinishLaunching();
  settle();
}

KeyStage::KeyStage()
    : monitor_(runLoop_, desktop_.accessibility, desktop_.eventTaps, desktop_.userDefaults) {
  registerPreferenceDefaults(desktop_.userDefaults);
}

platform::TapResult KeyStage::press(std::uint32_t keyCode, std::uint32_t modifierFlags) {
  const platform::InputEvent event{
      .subtype = platform::systemDefined::auxiliaryControlButtons,
      .data1 = std::int64_t{keyCode} << 16 | platform::systemDefined::keyDown << 8,
      .modifierFlags = modifierFlags};
  return monitor_.handleTapEvent(platform::systemDefined::eventType, &event);
}

PanelStage::PanelStage(NotchPresentation presentation) {
  model.volumeLevel = 0.5F;
  model.brightnessLevel = 0.5F;
  model.isVolumeHUDVisible = presentation == NotchPresentation::volumeHUD;
  model.isBrightnessHUDVisible = presentation == NotchPresentation::brightnessHUD;
  model.isExpanded = presentation == NotchPresentation::expanded;
}

std::unique_ptr<view::HostingView> PanelStage::makeView() {
  auto hosting = std::make_unique<view::HostingView>(
      NotchRootView{.viewModel = &model, .windowSize = windowSize},
      view::HostingView::Services{
          .textMetrics = metrics_, .now = [this] { return now; }, .scheduleRepeatingTimer = {}});
  hosting->setFrame({0, 0, windowSize.width, windowSize.height});
  return hosting;
}

}  // namespace valdrix::bench
