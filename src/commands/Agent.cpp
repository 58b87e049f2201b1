#include "commands/Agent.h"

#include <utility>

#include <QCoreApplication>
#include <QEventLoop>

#include "commands/CalendarAccess.h"
#include "commands/CustodyReport.h"
#include "commands/Failure.h"
#include "commands/HousingReport.h"
#include "commands/PressMediaKey.h"
#include "commands/StatusReport.h"
#include "desktop/session/ProgramPages.h"

namespace valdrix::commands {

namespace {

using desktop::AgentAnswer;

/// Seconds after the start until what will be seen later is prepared: the start is over, and few
/// have pressed a key yet.
constexpr double preparationDelay = 0.5;

AgentAnswer shown(NotchWindowController::Showing showing, const char* whenUnavailable) {
  switch (showing) {
    case NotchWindowController::Showing::unavailable:
      return {false, whenUnavailable};
    case NotchWindowController::Showing::switchedOff:
      return {false, "Cet indicateur est désactivé dans les réglages."};
    case NotchWindowController::Showing::expanded:
      return {false, "Le panneau est déplié : il ne montre pas d'indicateur."};
    case NotchWindowController::Showing::shown:
      break;
  }
  return {true, {}};
}

}  // namespace

int Agent::run(const desktop::SettingsRequest& window, bool opensWindow) {
  switch (instance_.claim(window)) {
    case desktop::SingleInstance::Claim::handedOver:
      return 0;
    case desktop::SingleInstance::Claim::unanswered:
      return fail("valdrix tourne déjà, mais ne répond pas");
    case desktop::SingleInstance::Claim::only:
      break;
  }
  platform_ = desktop::DesktopPlatform::make(runLoop_, bus_);
  if (!platform_) return fail("ce bureau n'est pas pris en charge");
  app_.emplace(platform_->ports());
  const Token answers = platform_->privacySettings().observeAnswers(
      [this] { app_->appDelegate().calendarService().requestAccess(); });
  app_->didFinishLaunching();
  const Token preparation = runLoop_.scheduleTimer(preparationDelay, false, [this] {
    app_->appDelegate().windowController().prepareHiddenLayers();
    desktop::releaseProgramPages();
  });
  if (opensWindow) openWindow(window);
  const int result = QCoreApplication::exec();
  app_.reset();
  leaveKeys();
  platform_.reset();
  return result;
}

// Without the agent nobody acts on the keys that the desktop leaves. They have been given up by
// now, so that it can have them.
void Agent::leaveKeys() {
  constexpr double mostSeconds = 3;
  auto& custody = platform_->keyCustody();
  custody.setWanted({});
  QEventLoop loop;
  const auto observer = custody.observe([&] {
    if (!custody.state().isBusy) loop.quit();
  });
  const auto limit = runLoop_.scheduleTimer(mostSeconds, false, [&] { loop.quit(); });
  if (custody.state().isBusy) loop.exec();
}

template <class F>
auto Agent::whenStarted(F answer) {
  return [this, answer](const auto&... arguments) -> AgentAnswer {
    if (!app_) return {false, "valdrix démarre ou s'arrête."};
    return answer(app_->appDelegate(), arguments...);
  };
}

desktop::AgentObject::Handlers Agent::handlers() {
  return {
      .status = whenStarted([this](AppDelegate& app) -> AgentAnswer {
        return {true, statusReport(app, *platform_)};
      }),
      .requestCalendarAccess = whenStarted([this](AppDelegate& app) -> AgentAnswer {
        return {true, requestCalendarAccess(app.calendarService(), platform_->ports().eventStore)};
      }),
      .openSettings = whenStarted([this](AppDelegate&, const desktop::SettingsRequest& request) {
        if (!platform_->hasTab(request)) return AgentAnswer{false, "Onglet inconnu."};
        openWindow(request);
        return AgentAnswer{true, {}};
      }),
      .pressKey = whenStarted([this](AppDelegate&, const desktop::AgentObject::KeyPress& press) {
        return pressKey(press);
      }),
      .showVolume = whenStarted([](AppDelegate& app) {
        return shown(app.windowController().showVolume(), "Il n'y a pas de sortie audio.");
      }),
      .showBrightness = whenStarted([](AppDelegate& app) {
        return shown(app.windowController().showBrightness(),
                     "La luminosité de cet écran ne peut pas être réglée.");
      }),
      .describeHousings = whenStarted([this](AppDelegate&) -> AgentAnswer {
        return {true, housingReport(*platform_)};
      }),
      .previewHousing = whenStarted(
          [this](AppDelegate&, view::Size size) { return previewHousing(*platform_, size); }),
      .endPreview =
          [this] {
            if (platform_) platform_->housings().setPreview(std::nullopt);
          },
      .entrustKeys = whenStarted([this](AppDelegate&) -> AgentAnswer {
        platform_->keyCustody().entrust();
        return {!platform_->keyCustody().state().places.empty(),
                "Ce bureau n'a pas de réglages que valdrix sache changer."};
      }),
      .restoreKeys = whenStarted([this](AppDelegate&) -> AgentAnswer {
        platform_->keyCustody().restore();
        return {true, {}};
      }),
      .describeCustody = whenStarted(
          [this](AppDelegate&) { return custodyReport(platform_->keyCustody().state()); }),
      .quit =
          [] {
            QCoreApplication::exit(0);
            return AgentAnswer{true, {}};
          },
  };
}

// A turn of the loop later, because whoever asked should not wait for a window to be made.
void Agent::openWindow(const desktop::SettingsRequest& request) {
  runLoop_.async([this, request] {
    if (!platform_) return;
    request.activation.during([&] {
      if (request.window == desktop::SettingsRequest::Window::permissions)
        platform_->privacySettings().open(request.tab);
      else
        platform_->ports().sceneHost.openSettings(request.tab);
    });
  });
}

bool Agent::followsQuickly() {
  // Keyboards wait half a second before they repeat.
  constexpr double longestGap = 0.65;
  const double now = runLoop_.now();
  return now - std::exchange(lastDebounced_, now) < longestGap;
}

AgentAnswer Agent::pressKey(const desktop::AgentObject::KeyPress& press) {
  const auto key = platform::mediaKeyWithCode(press.code);
  if (!key) return {false, "Touche inconnue."};
  auto& app = app_->appDelegate();
  const bool isRepeat = press.isRepeat || (press.isDebounced && followsQuickly());
  if (pressMediaKey(app.mediaKeyMonitor(),
                    {.key = *key, .isFine = press.isFine, .isRepeat = isRepeat}))
    return {true, {}};
  return {false, platform::isBrightnessKey(*key) && !app.canHandleBrightnessKeys()
                     ? "La luminosité de cet écran ne peut pas être réglée."
                     : "L'indicateur de cette touche est désactivé : valdrix ne la prend pas."};
}

}  // namespace valdrix::commands
