#include "desktop/QtPlatformChoice.h"

#include <QByteArray>

#include "desktop/x11/X11Display.h"
#ifdef VALDRIX_WAYLAND
#include "desktop/WaylandWindowSystem.h"
#endif

namespace valdrix::desktop {

QtPlatformChoice QtPlatformChoice::make() {
  const QByteArray chosen = qgetenv("QT_QPA_PLATFORM");
#ifdef VALDRIX_WAYLAND
  // The panel needs none of Qt's plugins there. Where it has none for Wayland, the settings come up
  // through XWayland, and without that only the settings are missing.
  if (WaylandWindowSystem::refusal().empty())
    return {true, chosen.isEmpty() ? "wayland;xcb;offscreen" : ""};
#endif
  // People choose Wayland for all their programs; the panel is then to be had through XWayland.
  const bool wantsX11 = chosen.isEmpty() || chosen.startsWith("wayland");
  // Qt ends the process with an abort and a page of text when it finds no display.
  const bool needsX11 = wantsX11 || chosen.startsWith("xcb");
  return {!needsX11 || canConnectToX11Display(), wantsX11 ? "xcb" : ""};
}

}  // namespace valdrix::desktop
