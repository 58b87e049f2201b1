#pragma once

#include <functional>

#include <QPoint>

#include "desktop/screens/CameraHousings.h"
#include "desktop/x11/X11Activation.h"
#include "desktop/x11/X11Connection.h"
#include "desktop/x11/X11Cursor.h"
#include "desktop/x11/X11Manager.h"
#include "desktop/x11/X11Overlay.h"
#include "desktop/x11/X11PanelWindows.h"
#include "desktop/x11/X11Pointer.h"
#include "desktop/x11/X11Screens.h"
#include "desktop/x11/X11ThemeName.h"
#include "desktop/x11/X11WindowNews.h"

namespace valdrix::desktop {

class QtTextMetrics;

/// Screens, panels, pointer and cursor of the X server that Qt is connected to.
struct X11Desktop {
  /// `textMetrics` and `housings` must outlive it.
  X11Desktop(const QtTextMetrics& textMetrics, CameraHousings& housings)
      : screens(housings),
        panelWindows({connection, pointer, cursor, screens, compositing, windowNews, overlay,
                      textMetrics, framesDrawn, onMenuRequested}) {}

  X11Connection connection;
  X11Screens screens;
  X11Pointer pointer{connection};
  X11Cursor cursor{connection};
  X11Manager compositing{connection, X11Manager::compositing};
  X11Manager tray{connection, X11Manager::tray};
  X11WindowNews windowNews{connection};
  X11Overlay overlay{connection, pointer, compositing};
  X11ThemeName theme{connection};
  X11Activation activation{connection};
  /// Frames that all panels together have painted.
  std::uint64_t framesDrawn = 0;
  /// What a panel calls that is asked for the menu.
  std::function<void(QPoint)> onMenuRequested;
  X11PanelWindows panelWindows;
};

}  // namespace valdrix::desktop
