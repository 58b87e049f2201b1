#include "desktop/X11WindowSystem.h"

#include <utility>

#include <QGuiApplication>
#include <QJsonArray>

namespace valdrix::desktop {

std::string X11WindowSystem::refusal() {
  return QGuiApplication::platformName() == "xcb" ? "" : "Qt runs on no X server";
}

X11WindowSystem::X11WindowSystem(platform::RunLoop& runLoop, const QtTextMetrics& textMetrics,
                                 CameraHousings& housings, std::function<void()> onKeysTaken)
    : desktop_(textMetrics, housings),
      eventTaps_(runLoop),
      accessibility_(eventTaps_, std::move(onKeysTaken)) {}

std::uint64_t X11WindowSystem::framesDrawn() const { return desktop_.framesDrawn; }

QJsonObject X11WindowSystem::backends() const {
  const QString panel = desktop_.compositing.isActive() ? "x11-argb" : "x11-shaped";
  return {{"screens", "x11"}, {"panelWindows", panel},    {"pointer", "x11"},
          {"cursor", "x11"},  {"eventTaps", "x11-grabs"}, {"accessibility", "x11-grabs"}};
}

QJsonObject X11WindowSystem::mediaKeys() const {
  const auto codes = [](const std::vector<std::uint32_t>& keys) {
    QJsonArray array;
    for (const auto code : keys) array.append(static_cast<int>(code));
    return array;
  };
  const MediaKeyStatus status = eventTaps_.status();
  return {{"held", codes(status.held)},
          {"missing", codes(status.missing)},
          {"released", codes(status.released)},
          {"absent", codes(status.absent)}};
}

}  // namespace valdrix::desktop
