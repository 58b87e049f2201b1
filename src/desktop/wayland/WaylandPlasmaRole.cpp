#include "desktop/wayland/WaylandPlasmaRole.h"

#include <utility>

namespace valdrix::desktop {

const xdg_surface_listener WaylandPlasmaRole::surfaceListener{
    .configure =
        [](void* data, xdg_surface* windowSurface, std::uint32_t serial) {
          xdg_surface_ack_configure(windowSurface, serial);
          static_cast<WaylandPlasmaRole*>(data)->tellConfigured();
        },
};

// The size is the panel's to choose. Later versions have more events, which are not asked for.
const xdg_toplevel_listener WaylandPlasmaRole::windowListener = [] {
  xdg_toplevel_listener listener{};
  listener.configure = [](void*, xdg_toplevel*, std::int32_t, std::int32_t, wl_array*) {};
  listener.close = [](void* data, xdg_toplevel*) {
    static_cast<WaylandPlasmaRole*>(data)->tellClosed();
  };
  return listener;
}();

WaylandPlasmaRole::WaylandPlasmaRole(WaylandConnection& connection, wl_surface* surface,
                                     QPoint origin, Handlers handlers)
    : WaylandSurfaceRole(std::move(handlers)),
      windowSurface_(xdg_wm_base_get_xdg_surface(connection.windowShell(), surface)),
      window_(xdg_surface_get_toplevel(windowSurface_.get())),
      plasmaSurface_(org_kde_plasma_shell_get_surface(connection.plasmaShell(), surface)) {
  xdg_surface_add_listener(windowSurface_.get(), &surfaceListener, this);
  xdg_toplevel_add_listener(window_.get(), &windowListener, this);
  xdg_toplevel_set_app_id(window_.get(), "valdrix");
  org_kde_plasma_surface_set_role(plasmaSurface_.get(),
                                  ORG_KDE_PLASMA_SURFACE_ROLE_ONSCREENDISPLAY);
  org_kde_plasma_surface_set_position(plasmaSurface_.get(), origin.x(), origin.y());
  org_kde_plasma_surface_set_skip_taskbar(plasmaSurface_.get(), 1);
}

}  // namespace valdrix::desktop
