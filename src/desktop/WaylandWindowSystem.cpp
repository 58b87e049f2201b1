#include "desktop/WaylandWindowSystem.h"

#include <QCoreApplication>

#include "desktop/session/ProgramRestart.h"
#include "desktop/wayland/WaylandDisplay.h"

namespace valdrix::desktop {

std::string WaylandWindowSystem::refusal() {
  if (qgetenv("QT_QPA_PLATFORM").startsWith("xcb")) return "QT_QPA_PLATFORM asks for X11";
  return whyNoWaylandPanel();
}

WaylandWindowSystem::WaylandWindowSystem(platform::RunLoop&, const QtTextMetrics& textMetrics,
                                         CameraHousings& housings)
    : desktop_(textMetrics, housings) {
  restartWhereQtWouldEnd();
  desktop_.connection.setOnLost([](bool hasComplained) {
    // What it complains of once it would complain of again.
    if (!hasComplained) restartWithoutDisplay();
    QCoreApplication::exit(1);
  });
}

QJsonObject WaylandWindowSystem::backends() const {
  const auto& connection = desktop_.connection;
  const bool isFractional = connection.viewporter() && connection.fractionalScaleManager();
  const QString panel = connection.needsPlasmaShell() ? "plasma-shell" : "layer-shell";
  return {{"screens", "wayland"},
          {"panelWindows", isFractional ? panel + "-fractional" : panel},
          {"pointer", "wayland"},
          {"cursor", "wayland"}};
}

}  // namespace valdrix::desktop
