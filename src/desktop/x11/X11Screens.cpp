#include "desktop/x11/X11Screens.h"

#include <QGuiApplication>
#include <QScreen>
#include <xcb/randr.h>

#include "desktop/x11/X11Connection.h"

namespace valdrix::desktop {

X11Screens::X11Screens(CameraHousings& housings) : NotifyingScreens(housings) {
  begin();
  QObject::connect(qGuiApp, &QGuiApplication::screenAdded, &context_, [this](QScreen* screen) {
    watch(screen);
    scheduleUpdate();
  });
  QObject::connect(qGuiApp, &QGuiApplication::screenRemoved, &context_,
                   [this] { scheduleUpdate(); });
  QObject::connect(qGuiApp, &QGuiApplication::primaryScreenChanged, &context_,
                   [this] { scheduleUpdate(); });
  for (QScreen* screen : QGuiApplication::screens()) watch(screen);
  qGuiApp->installNativeEventFilter(this);
}

X11Screens::~X11Screens() {
  if (qGuiApp) qGuiApp->removeNativeEventFilter(this);
}

// When the last monitor goes, Qt turns its screen into a stand-in and signals nothing.
bool X11Screens::nativeEventFilter(const QByteArray& kind, void* message, qintptr*) {
  if (kind != "xcb_generic_event_t") return false;
  const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  const auto* randr = x11 ? xcb_get_extension_data(x11->connection(), &xcb_randr_id) : nullptr;
  if (!randr || !randr->present) return false;
  const auto type = eventType(*static_cast<const xcb_generic_event_t*>(message));
  if (type == randr->first_event + XCB_RANDR_SCREEN_CHANGE_NOTIFY ||
      type == randr->first_event + XCB_RANDR_NOTIFY)
    scheduleUpdate();
  return false;
}

void X11Screens::watch(QScreen* screen) {
  const auto changed = [this] { scheduleUpdate(); };
  QObject::connect(screen, &QScreen::geometryChanged, &context_, changed);
  QObject::connect(screen, &QScreen::physicalDotsPerInchChanged, &context_, changed);
  QObject::connect(screen, &QScreen::logicalDotsPerInchChanged, &context_, changed);
}

std::vector<platform::Screen> X11Screens::screens() const {
  const auto layout = ScreenLayout::current();
  std::vector<platform::Screen> screens;
  for (const auto& entry : layout.entries) {
    platform::Screen screen{entry.name, entry.points, entry.scale, 0, std::nullopt, std::nullopt};
    screens.push_back(screen);
  }
  housings().applyTo(screens);
  return screens;
}

}  // namespace valdrix::desktop
