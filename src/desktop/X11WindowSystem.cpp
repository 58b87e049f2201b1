#include "desktop/X11WindowSystem.h"

#include <utility>

#include <QGuiApplication>

#include "desktop/x11/X11Keys.h"

namespace valdrix::desktop {

std::string X11WindowSystem::refusal() {
  return QGuiApplication::platformName() == "xcb" ? "" : "Qt runs on no X server";
}

X11WindowSystem::X11WindowSystem(platform::RunLoop& runLoop, const QtTextMetrics& textMetrics,
                                 CameraHousings& housings)
    : desktop_(textMetrics, housings), runLoop_(runLoop) {}

std::uint64_t X11WindowSystem::framesDrawn() const { return desktop_.framesDrawn; }

QJsonObject X11WindowSystem::backends() const {
  const QString panel = desktop_.compositing.isActive() ? "x11-argb" : "x11-shaped";
  return {{"screens", "x11"}, {"panelWindows", panel}, {"pointer", "x11"}, {"cursor", "x11"}};
}

KeySource::Maker X11WindowSystem::keySource(std::function<bool(platform::MediaKey)> mayTake) {
  return [this, mayTake = std::move(mayTake)](KeySource::Events events) {
    return std::make_unique<X11Keys>(std::string(), runLoop_, mayTake, std::move(events));
  };
}

}  // namespace valdrix::desktop
