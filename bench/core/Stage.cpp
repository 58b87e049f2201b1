#include "bench/core/Stage.h"

#include <chrono>
#include <string>
#include <utility>

#include "notch/NotchRootView.h"
#include "preferences/PreferenceDefaults.h"

namespace valdrix::bench {

namespace {

constexpr view::Size windowSize{720, 1000};

/// `ports` with another pointer.
platform::Platform withPointer(const platform::Platform& ports, platform::Pointer& pointer) {
  return {.runLoop = ports.runLoop,
          .application = ports.application,
          .userDefaults = ports.userDefaults,
          .screens = ports.screens,
          .panelWindows = ports.panelWindows,
          .pointer = pointer,
          .cursor = ports.cursor,
          .haptics = ports.haptics,
          .accessibility = ports.accessibility,
          .eventTaps = ports.eventTaps,
          .audioHardware = ports.audioHardware,
          .displays = ports.displays,
          .displayServices = ports.displayServices,
          .userCalendar = ports.userCalendar,
          .eventStore = ports.eventStore,
          .collator = ports.collator,
          .workspace = ports.workspace,
          .loginItem = ports.loginItem,
          .urlSession = ports.urlSession,
          .bundle = ports.bundle,
          .sceneHost = ports.sceneHost,
          .textMetrics = ports.textMetrics};
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
  sim::SimEventStore& store = desktop_.eventStore;
  store.addCalendar({.calendarIdentifier = "home", .title = "Home"});
  for (int hour = 1; hour <= 4; ++hour) {
    const auto start = desktop_.userCalendar.now() + std::chrono::hours(6 * hour);
    store.addEvent({.eventIdentifier = std::to_string(hour),
                    .title = "An event of the next day or two",
                    .startDate = start,
                    .endDate = start + std::chrono::hours(1)},
                   "home");
  }
  store.setAuthorizationStatus(platform::EventAuthorization::fullAccess);
  registerPreferenceDefaults(desktop_.userDefaults);
  calendarService_.emplace(CalendarService::Ports{.eventStore = store,
                                                  .collator = desktop_.collator,
                                                  .userCalendar = desktop_.userCalendar,
                                                  .runLoop = desktop_.runLoop,
                                                  .userDefaults = desktop_.userDefaults,
                                                  .workspace = desktop_.workspace});
  model.volumeLevel = 0.5F;
  model.brightnessLevel = 0.5F;
  model.isVolumeHUDVisible = presentation == NotchPresentation::volumeHUD;
  model.isBrightnessHUDVisible = presentation == NotchPresentation::brightnessHUD;
  model.isExpanded = presentation == NotchPresentation::expanded;
}

std::unique_ptr<view::HostingView> PanelStage::makeView() {
  auto hosting = std::make_unique<view::HostingView>(
      NotchRootView{.viewModel = &model,
                    .calendar = {.calendarService = &*calendarService_,
                                 .workspace = &desktop_.workspace,
                                 .cursor = &desktop_.cursor},
                    .windowSize = windowSize},
      view::HostingView::Services{
          .textMetrics = metrics_,
          .now = [this] { return now; },
          .scheduleRepeatingTimer = [](double, const auto&) { return Token([] {}); }});
  hosting->setFrame({0, 0, windowSize.width, windowSize.height});
  return hosting;
}

}  // namespace valdrix::bench
