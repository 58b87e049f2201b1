#pragma once

#include <memory>

#include "desktop/wayland/WaylandProtocols.h"

namespace valdrix::desktop {

/// Ends each kind of object with the request that its protocol has for that.
struct EndWayland {
  void operator()(wl_display* o) const { wl_display_disconnect(o); }
  void operator()(wl_registry* o) const { wl_registry_destroy(o); }
  void operator()(wl_callback* o) const { wl_callback_destroy(o); }
  void operator()(wl_compositor* o) const { wl_compositor_destroy(o); }
  void operator()(wl_shm* o) const { wl_shm_destroy(o); }
  void operator()(wl_shm_pool* o) const { wl_shm_pool_destroy(o); }
  void operator()(wl_buffer* o) const { wl_buffer_destroy(o); }
  void operator()(wl_region* o) const { wl_region_destroy(o); }
  void operator()(wl_surface* o) const { wl_surface_destroy(o); }
  void operator()(wl_output* o) const {
    if (wl_output_get_version(o) >= WL_OUTPUT_RELEASE_SINCE_VERSION)
      wl_output_release(o);
    else
      wl_output_destroy(o);
  }
  void operator()(wl_seat* o) const { wl_seat_destroy(o); }
  void operator()(wl_pointer* o) const {
    if (wl_pointer_get_version(o) >= WL_POINTER_RELEASE_SINCE_VERSION)
      wl_pointer_release(o);
    else
      wl_pointer_destroy(o);
  }
  void operator()(zxdg_output_manager_v1* o) const { zxdg_output_manager_v1_destroy(o); }
  void operator()(zxdg_output_v1* o) const { zxdg_output_v1_destroy(o); }
  void operator()(zwlr_layer_shell_v1* o) const {
    if (zwlr_layer_shell_v1_get_version(o) >= ZWLR_LAYER_SHELL_V1_DESTROY_SINCE_VERSION)
      zwlr_layer_shell_v1_destroy(o);
    else
      wl_proxy_destroy(reinterpret_cast<wl_proxy*>(o));
  }
  void operator()(zwlr_layer_surface_v1* o) const { zwlr_layer_surface_v1_destroy(o); }
  void operator()(xdg_wm_base* o) const { xdg_wm_base_destroy(o); }
  void operator()(xdg_surface* o) const { xdg_surface_destroy(o); }
  void operator()(xdg_toplevel* o) const { xdg_toplevel_destroy(o); }
  void operator()(org_kde_plasma_shell* o) const { org_kde_plasma_shell_destroy(o); }
  void operator()(org_kde_plasma_surface* o) const { org_kde_plasma_surface_destroy(o); }
  void operator()(wp_viewporter* o) const { wp_viewporter_destroy(o); }
  void operator()(wp_viewport* o) const { wp_viewport_destroy(o); }
  void operator()(wp_fractional_scale_manager_v1* o) const {
    wp_fractional_scale_manager_v1_destroy(o);
  }
  void operator()(wp_fractional_scale_v1* o) const { wp_fractional_scale_v1_destroy(o); }
};

/// An object on a Wayland connection, which must outlive it.
template <class T>
using WaylandOwned = std::unique_ptr<T, EndWayland>;

}  // namespace valdrix::desktop
