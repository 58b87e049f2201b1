#pragma once

#include <QPoint>

#include "desktop/wayland/WaylandConnection.h"
#include "desktop/wayland/WaylandSurfaceRole.h"

namespace valdrix::desktop {

/// A surface that KWin treats as one of Plasma's own on-screen displays: above fullscreen windows,
/// on all virtual desktops, in no list or overview of windows, and never with the keyboard.
class WaylandPlasmaRole final : public WaylandSurfaceRole {
 public:
  /// `origin` is where its top left lies in the space of all outputs, in logical pixels. The
  /// connection must have a Plasma shell and a window shell.
  WaylandPlasmaRole(WaylandConnection& connection, wl_surface* surface, QPoint origin,
                    Handlers handlers);

 private:
  static const xdg_surface_listener surfaceListener;
  static const xdg_toplevel_listener windowListener;

  WaylandOwned<xdg_surface> windowSurface_;
  WaylandOwned<xdg_toplevel> window_;
  WaylandOwned<org_kde_plasma_surface> plasmaSurface_;
};

}  // namespace valdrix::desktop
