#pragma once

#include <functional>

#include <QPoint>

#include "desktop/screens/CameraHousings.h"
#include "desktop/wayland/WaylandConnection.h"
#include "desktop/wayland/WaylandCursor.h"
#include "desktop/wayland/WaylandPanelWindows.h"
#include "desktop/wayland/WaylandPointer.h"
#include "desktop/wayland/WaylandScreens.h"
#include "desktop/wayland/WaylandSeats.h"

namespace valdrix::desktop {

class QtTextMetrics;

/// Screens, panels, pointer and cursor of the compositor that WAYLAND_DISPLAY names.
struct WaylandDesktop {
  /// `textMetrics` and `housings` must outlive it.
  WaylandDesktop(const QtTextMetrics& textMetrics, CameraHousings& housings)
      : screens(connection, housings),
        panelWindows(
            {connection, screens, pointer, seats, textMetrics, framesDrawn, onMenuRequested}) {}

  WaylandConnection connection;
  WaylandScreens screens;
  WaylandPointer pointer;
  WaylandCursor cursor{connection};
  WaylandSeats seats{connection, cursor};
  /// Frames that all panels together have painted.
  std::uint64_t framesDrawn = 0;
  /// What a panel calls that is asked for the menu.
  std::function<void(QPoint)> onMenuRequested;
  WaylandPanelWindows panelWindows;
};

}  // namespace valdrix::desktop
