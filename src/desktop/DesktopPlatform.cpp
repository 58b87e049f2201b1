#include "desktop/DesktopPlatform.h"

#include <algorithm>
#include <filesystem>
#include <utility>

#include <QByteArray>
#include <QGuiApplication>

#ifdef VALDRIX_WAYLAND
#include "desktop/WaylandWindowSystem.h"
#endif
#include "desktop/X11WindowSystem.h"
#ifdef VALDRIX_CALENDAR_SERVER
#include "desktop/calendarserver/CalendarServerSource.h"
#endif
#ifdef VALDRIX_UPDATE_CHECK
#include "desktop/session/HttpsUrlSession.h"
#endif
#include "desktop/keys/CommandedKeys.h"
#include "desktop/session/NoUrlSession.h"
#include "desktop/shortcuts/KGlobalAccelKeys.h"
#include "desktop/shortcuts/SessionKeyCustody.h"
#include "desktop/shortcuts/ShortcutKeys.h"
#include "desktop/vdir/VdirSource.h"

namespace valdrix::desktop {

namespace {

template <class W>
std::unique_ptr<WindowSystem> makeWindowSystem(platform::RunLoop& runLoop,
                                               const QtTextMetrics& textMetrics,
                                               CameraHousings& housings) {
  return std::make_unique<W>(runLoop, textMetrics, housings);
}

/// Where the kernel's devices are; VALDRIX_SYSFS names another tree.
std::filesystem::path sysfsRoot() {
  const QByteArray root = qgetenv("VALDRIX_SYSFS");
  return root.isEmpty() ? "/sys" : root.toStdString();
}

DesktopEventStore::Sources calendarSources(platform::RunLoop& runLoop, SessionBus& bus,
                                           QtUserCalendar& userCalendar) {
  DesktopEventStore::Sources sources;
  sources.push_back(std::make_unique<VdirSource>(runLoop, userCalendar));
#ifdef VALDRIX_CALENDAR_SERVER
  sources.push_back(std::make_unique<CalendarServerSource>(bus, runLoop, userCalendar));
#else
  (void)bus;
#endif
  return sources;
}

std::unique_ptr<platform::UrlSession> makeUrlSession(platform::RunLoop& runLoop) {
#ifdef VALDRIX_UPDATE_CHECK
  return std::make_unique<HttpsUrlSession>(runLoop);
#else
  return std::make_unique<NoUrlSession>(runLoop);
#endif
}

/// In the order in which they are asked for a key. What the desktop has is not taken from it before
/// the user says so: who is first at a login would be a matter of chance.
std::vector<KeySource::Maker> keySources(WindowSystem& windowSystem, SessionBus& bus,
                                         DesktopKeyCustody& custody) {
  std::vector<KeySource::Maker> sources{
      [&bus, &custody](KeySource::Events events) {
        const auto isEntrusted = [&custody](platform::MediaKey key) {
          return custody.leavesToShortcuts() && custody.state().leaves(key);
        };
        return std::make_unique<KGlobalAccelKeys>(bus, isEntrusted, std::move(events));
      },
      [&custody](KeySource::Events events) {
        return std::make_unique<ShortcutKeys>(custody, std::move(events));
      }};
  if (auto source = windowSystem.keySource(
          [&custody](platform::MediaKey key) { return !custody.state().reserves(key); }))
    sources.push_back(std::move(source));
  sources.emplace_back([](const KeySource::Events&) { return std::make_unique<CommandedKeys>(); });
  return sources;
}

std::optional<DesktopWorkspace::EventPlace> findEvent(const DesktopEventStore& store,
                                                      const QtUserCalendar& userCalendar,
                                                      std::string_view identifier) {
  const auto event = store.occurrenceNear(identifier, userCalendar.now());
  if (!event) return std::nullopt;
  const auto date = userCalendar.fields(event->startDate);
  return DesktopWorkspace::EventPlace{
      .day = QDate(static_cast<int>(date.year), static_cast<int>(date.month),
                   static_cast<int>(date.day)),
      .calendarIdentifier = event->calendar ? event->calendar->calendarIdentifier : std::string()};
}

QString trayName(const TrayItem* item) {
  switch (item ? item->place() : TrayItem::Place::nowhere) {
    case TrayItem::Place::statusNotifierHost:
      return "qt, status notifier item";
    case TrayItem::Place::x11Tray:
      return "qt, x11 tray";
    case TrayItem::Place::nowhere:
      break;
  }
  return "qt, no tray";
}

}  // namespace

const std::vector<DesktopPlatform::Candidate> DesktopPlatform::candidates = {
#ifdef VALDRIX_WAYLAND
    {"wayland", &WaylandWindowSystem::refusal, &makeWindowSystem<WaylandWindowSystem>},
#endif
    {"x11", &X11WindowSystem::refusal, &makeWindowSystem<X11WindowSystem>},
};

std::unique_ptr<DesktopPlatform> DesktopPlatform::make(QtRunLoop& runLoop, SessionBus& bus) {
  std::string refusals;
  for (const auto& candidate : candidates) {
    const auto refusal = candidate.refusal();
    if (refusal.empty())
      return std::unique_ptr<DesktopPlatform>(
          new DesktopPlatform(runLoop, bus, candidate, candidate.name + refusals));
    refusals += std::string("; not ") + candidate.name + ": " + refusal;
  }
  return nullptr;
}

DesktopPlatform::DesktopPlatform(QtRunLoop& runLoop, SessionBus& bus, const Candidate& windowSystem,
                                 std::string choice)
    : choice_(std::move(choice)),
      userDefaults_(IniUserDefaults::standardFile()),
      haptics_(bus),
      notification_(bus),
      audioHardware_(runLoop),
      displays_(sysfsRoot()),
      displayServices_(displays_),
      eventStore_(calendarSources(runLoop, bus, userCalendar_), privacyRecord_, accessDialog_),
      workspace_(bus, {.findEvent =
                           [this](std::string_view identifier) {
                             return findEvent(eventStore_, userCalendar_, identifier);
                           },
                       .openSettings =
                           [this](std::string_view url) { return privacySettings_.open(url); }}),
      urlSession_(makeUrlSession(runLoop)),
      appearance_(bus),
      sceneHost_(bus, [this](std::uint64_t window) { windowSystem_->bringToFront(window); }),
      keyCustody_(sessionKeyCustody(runLoop, bus)),
      housings_(CameraHousings::Sources::fromEnvironment()),
      housingsWatch_(housings_.userFile(), [this] { housings_.reread(); }),
      windowSystem_(windowSystem.make(runLoop, textMetrics_, housings_)),
      mediaKeys_(runLoop, keySources(*windowSystem_, bus, *keyCustody_)),
      keyLossNotice_(mediaKeys_, privacyRecord_, runLoop,
                     [this](const auto& text) { notification_.show(text); }),
      privacySettings_(
          {.eventStore = eventStore_,
           .record = privacyRecord_,
           .mediaKeys = mediaKeys_,
           .custody = keyCustody_.get(),
           .bringToFront = [this](std::uint64_t window) { windowSystem_->bringToFront(window); }}),
      preferencesObserver_(userDefaults_.observeChanges([this] { mediaKeys_.reconsider(); })),
      ports_{.runLoop = runLoop,
             .application = application_,
             .userDefaults = userDefaults_,
             .screens = windowSystem_->screens(),
             .panelWindows = windowSystem_->panelWindows(),
             .pointer = windowSystem_->pointer(),
             .cursor = windowSystem_->cursor(),
             .haptics = haptics_,
             .accessibility = mediaKeys_,
             .eventTaps = mediaKeys_,
             .audioHardware = audioHardware_,
             .displays = displays_,
             .displayServices = displayServices_,
             .userCalendar = userCalendar_,
             .eventStore = eventStore_,
             .collator = collator_,
             .workspace = workspace_,
             .loginItem = loginItem_,
             .urlSession = *urlSession_,
             .bundle = bundle_,
             .sceneHost = sceneHost_,
             .textMetrics = textMetrics_} {
  connectMenu();
  connectBacklight();
  connectTheme();
  connectCustody(runLoop);
  connectFailures();
}

void DesktopPlatform::connectFailures() {
  const auto tell = [this] { notification_.show(DesktopNotification::changesNotSaved()); };
  userDefaults_.setOnFailure(tell);
  privacyRecord_.setOnFailure(tell);
}

bool DesktopPlatform::hasTab(const SettingsRequest& request) const {
  const bool isPermissions = request.window == SettingsRequest::Window::permissions;
  return !request.tab ||
         *request.tab < (isPermissions ? PrivacySettings::tabCount : sceneHost_.tabCount());
}

void DesktopPlatform::connectCustody(platform::RunLoop& runLoop) {
  const auto tell = [this] { keyCustody_->setWanted(mediaKeys_.wanted()); };
  accountObserver_ = mediaKeys_.observeAccount(tell);
  custodyObserver_ = keyCustody_->observe([this] { mediaKeys_.reconsider(); });
  // After the start, when it is known which keys are wanted.
  runLoop.async(lifetime_.weak(tell));
}

void DesktopPlatform::connectBacklight() {
  auto& access = displayServices_.access();
  mediaKeys_.setFutility([&access](platform::MediaKey key) {
    return platform::isBrightnessKey(key) && !access.isGranted();
  });
  backlightObserver_ = access.observe([this] { mediaKeys_.reconsider(); });
  access.check();
}

void DesktopPlatform::connectMenu() {
  windowSystem_->setOnMenuRequested([this](QPoint position) {
    if (!sceneHost_.trayItem()) return;
    panelHold_ = windowSystem_->holdPanels();
    sceneHost_.popUpMenu(position, [this] { panelHold_.reset(); });
  });
  const auto tellOfTray = [this] { sceneHost_.setHasX11Tray(windowSystem_->hasTray()); };
  trayObserver_ = windowSystem_->observeTray(tellOfTray);
  tellOfTray();
}

void DesktopPlatform::connectTheme() {
  const auto tellOfTheme = [this] { appearance_.setThemeName(windowSystem_->themeName()); };
  themeObserver_ = windowSystem_->observeTheme(tellOfTheme);
  tellOfTheme();
}

QJsonObject DesktopPlatform::backends() const {
  QJsonObject backends = windowSystem_->backends();
  backends["windowSystem"] = QString::fromStdString(choice_);
  backends["qtPlatform"] = QGuiApplication::platformName();
  backends["runLoop"] = "qt";
  backends["userDefaults"] = "ini";
  backends["haptics"] = "feedback-service";
  backends["audioHardware"] = "pulse";
  backends["displays"] = "sysfs";
  backends["displayServices"] = "backlight";
  backends["textMetrics"] = "qt";
  backends["userCalendar"] = "qt";
#ifdef VALDRIX_CALENDAR_SERVER
  backends["eventStore"] = "vdir, evolution-data-server";
#else
  backends["eventStore"] = "vdir";
#endif
  backends["workspace"] = "xdg";
  backends["sceneHost"] = trayName(sceneHost_.trayItem());
  return backends;
}

}  // namespace valdrix::desktop
