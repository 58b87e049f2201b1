#pragma once

#include "desktop/screens/CameraHousings.h"
#include "desktop/x11/X11Compositing.h"
#include "desktop/x11/X11Connection.h"
#include "desktop/x11/X11Cursor.h"
#include "desktop/x11/X11PanelWindows.h"
#include "desktop/x11/X11Pointer.h"
#include "desktop/x11/X11Screens.h"

namespace valdrix::desktop {

class QtTextMetrics;

/// Screens, panels, pointer and cursor of the X server that Qt is connected to.
struct X11Desktop {
  /// `textMetrics` and `housings` must outlive it.
  X11Desktop(const QtTextMetrics& textMetrics, CameraHousings& housings)
      : screens(housings),
        panelWindows(
            {connection, pointer, cursor, screens, compositing, textMetrics, framesDrawn}) {}

  X11Connection connection;
  X11Screens screens;
  X11Pointer pointer{connection};
  X11Cursor cursor{connection};
  X11Compositing compositing{connection};
  /// Frames that all panels together have painted.
  std::uint64_t framesDrawn = 0;
  X11PanelWindows panelWindows;
};

}  // namespace valdrix::desktop
