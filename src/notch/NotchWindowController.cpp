#include "notch/NotchWindowController.h"

#include <utility>

#include "notch/NotchAnimations.h"
#include "notch/NotchGeometry.h"
#include "notch/NotchRootView.h"
#include "notch/NotchScreen.h"
#include "preferences/PreferenceKeys.h"
#include "view/HostingView.h"
#include "view/Transaction.h"

namespace valdrix {

namespace {

constexpr std::uint32_t motionMask = platform::eventMask::mouseMoved |
                                     platform::eventMask::leftMouseDragged |
                                     platform::eventMask::rightMouseDragged;

}  // namespace

NotchWindowController::NotchWindowController(const platform::Platform& platform,
                                             NotchViewModel& viewModel,
                                             const CalendarService& calendarService,
                                             VolumeService& volumeService,
                                             BrightnessService& brightnessService)
    : platform_(platform),
      viewModel_(viewModel),
      calendarService_(calendarService),
      volumeService_(volumeService),
      brightnessService_(brightnessService),
      volumeHUD_(platform.runLoop, platform.userDefaults, viewModel.isVolumeHUDVisible,
                 preferenceKeys::volumeHUDEnabled),
      brightnessHUD_(platform.runLoop, platform.userDefaults, viewModel.isBrightnessHUDVisible,
                     preferenceKeys::brightnessHUDEnabled),
      trackingObserver_([this] { scheduleTrackingUpdate(); }) {}

NotchWindowController::~NotchWindowController() {
  screenObserver_.reset();
  globalMonitor_.reset();
  localMonitor_.reset();
  volumeHUD_.cancelDismiss();
  brightnessHUD_.cancelDismiss();
}

void NotchWindowController::install() {
  buildWindow();
  screenObserver_ = platform_.screens.observeChanges(lifetime_.weak([this] { buildWindow(); }));
  installMouseMonitors();
  volumeService_.setOnVolumeChanged(
      lifetime_.weak([this](float level, bool isMuted) { showVolumeHUD(level, isMuted); }));
  brightnessService_.setOnBrightnessChanged(
      lifetime_.weak([this](float level) { showBrightnessHUD(level); }));
}

void NotchWindowController::buildWindow() {
  const auto screen = panelScreen(platform_.screens);
  if (!screen) return;
  if (window_) window_->orderOut();
  const view::Rect& frame = screen->frame;
  auto window = std::make_unique<NotchWindow>(
      platform_.panelWindows,
      view::Rect{frame.midX() - windowSize_.width / 2, frame.maxY() - windowSize_.height,
                 windowSize_.width, windowSize_.height});
  auto& runLoop = platform_.runLoop;
  auto content = std::make_unique<view::HostingView>(
      NotchRootView{.viewModel = &viewModel_,
                    .calendar = {.calendarService = &calendarService_,
                                 .workspace = &platform_.workspace,
                                 .cursor = &platform_.cursor},
                    .windowSize = windowSize_,
                    .collapsedSize = notchSize(*screen)},
      view::HostingView::Services{.textMetrics = platform_.textMetrics,
                                  .now = [&runLoop] { return runLoop.now(); },
                                  .scheduleRepeatingTimer =
                                      [&runLoop](double interval, std::function<void()> block) {
                                        return runLoop.scheduleTimer(interval, true,
                                                                     std::move(block));
                                      }});
  content->setFrame({0, 0, windowSize_.width, windowSize_.height});
  content->setAutoresizingMask(view::HostingView::widthSizable | view::HostingView::heightSizable);
  window->setContentView(std::move(content));
  window_ = std::move(window);
  // Before the first frame, which then shows the panel as the pointer has it here.
  updateHoverState();
  window_->orderFrontRegardless();
  updateTracking();
}

void NotchWindowController::prepareHiddenLayers() {
  if (window_) window_->prepareHiddenLayers();
}

void NotchWindowController::installMouseMonitors() {
  globalMonitor_.reset();
  localMonitor_.reset();
  const auto handler = lifetime_.weak([this] { updateHoverState(); });
  // Motion over other programs' windows, and motion over ours.
  globalMonitor_ = platform_.pointer.addGlobalMonitorForEventsMatchingMask(motionMask, handler);
  localMonitor_ = platform_.pointer.addLocalMonitorForEventsMatchingMask(motionMask, handler);
}

view::Rect NotchWindowController::hitRectangle(const platform::Screen& screen) const {
  const view::Size size = notchGeometry::panelSize(viewModel_.presentation(), notchSize(screen),
                                                   viewModel_.expandedSize);
  return {screen.frame.midX() - size.width / 2, screen.frame.maxY() - size.height, size.width,
          size.height};
}

void NotchWindowController::updateHoverState() {
  if (!window_) return;
  const auto screen = panelScreen(platform_.screens);
  if (!screen) return;
  const bool isInside = hitRectangle(*screen).contains(platform_.pointer.mouseLocation());
  if (window_->ignoresMouseEvents() != !isInside) window_->setIgnoresMouseEvents(!isInside);
  if (isInside == viewModel_.isExpanded) return;
  if (isInside) {
    platform_.haptics.performFeedbackPattern(platform::HapticPattern::levelChange,
                                             platform::HapticPerformanceTime::now);
    volumeHUD_.drop();
    brightnessHUD_.drop();
  }
  view::withAnimation(notchAnimation::show, [&] { viewModel_.isExpanded = isInside; });
}

void NotchWindowController::updateTracking() {
  isTrackingUpdateScheduled_ = false;
  if (!window_) return;
  const auto screen = panelScreen(platform_.screens);
  if (!screen) return;
  window_->setTrackedRectangle(trackingObserver_.track([&] { return hitRectangle(*screen); }));
}

void NotchWindowController::scheduleTrackingUpdate() {
  // Several changes of one turn, such as an indicator that gives way to the expanded panel, are one
  // change of the rectangle.
  if (std::exchange(isTrackingUpdateScheduled_, true)) return;
  platform_.runLoop.async(lifetime_.weak([this] { updateTracking(); }));
}

std::optional<NotchWindowController::Showing> NotchWindowController::obstacle(
    const LevelIndicator& indicator) const {
  if (!indicator.isEnabled()) return Showing::switchedOff;
  if (viewModel_.isExpanded) return Showing::expanded;
  return std::nullopt;
}

NotchWindowController::Showing NotchWindowController::showVolume() {
  if (volumeService_.deviceID() == 0) return Showing::unavailable;
  if (const auto found = obstacle(volumeHUD_)) return *found;
  showVolumeHUD(volumeService_.level(), volumeService_.isMuted());
  return Showing::shown;
}

NotchWindowController::Showing NotchWindowController::showBrightness() {
  if (!brightnessService_.isAvailable()) return Showing::unavailable;
  if (const auto found = obstacle(brightnessHUD_)) return *found;
  // Changes made elsewhere are not watched for.
  brightnessService_.refresh();
  showBrightnessHUD(brightnessService_.level());
  return Showing::shown;
}

void NotchWindowController::showVolumeHUD(float level, bool isMuted) {
  if (obstacle(volumeHUD_)) return;
  volumeHUD_.show(brightnessHUD_, [&] {
    viewModel_.volumeLevel = level;
    viewModel_.isMuted = isMuted;
  });
  scheduleVolumeHUDDismiss();
}

void NotchWindowController::showBrightnessHUD(float level) {
  if (obstacle(brightnessHUD_)) return;
  brightnessHUD_.show(volumeHUD_, [&] { viewModel_.brightnessLevel = level; });
  scheduleBrightnessHUDDismiss();
}

void NotchWindowController::scheduleVolumeHUDDismiss() {
  volumeHUD_.scheduleDismiss(lifetime_.weak([this] { hideVolumeHUD(); }));
}

void NotchWindowController::scheduleBrightnessHUDDismiss() {
  brightnessHUD_.scheduleDismiss(lifetime_.weak([this] { hideBrightnessHUD(); }));
}

void NotchWindowController::hideVolumeHUD() { volumeHUD_.hide(); }

void NotchWindowController::hideBrightnessHUD() { brightnessHUD_.hide(); }

}  // namespace valdrix
