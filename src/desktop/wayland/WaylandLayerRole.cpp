#include "desktop/wayland/WaylandLayerRole.h"

#include <utility>

namespace valdrix::desktop {

const zwlr_layer_surface_v1_listener WaylandLayerRole::listener{
    .configure =
        [](void* data, zwlr_layer_surface_v1* layerSurface, std::uint32_t serial, std::uint32_t,
           std::uint32_t) {
          zwlr_layer_surface_v1_ack_configure(layerSurface, serial);
          static_cast<WaylandLayerRole*>(data)->tellConfigured();
        },
    .closed = [](void* data,
                 zwlr_layer_surface_v1*) { static_cast<WaylandLayerRole*>(data)->tellClosed(); },
};

WaylandLayerRole::WaylandLayerRole(WaylandConnection& connection, wl_surface* surface,
                                   wl_output* output, const QRect& frame, bool takesKeyboard,
                                   Handlers handlers)
    : WaylandSurfaceRole(std::move(handlers)),
      layerSurface_(zwlr_layer_shell_v1_get_layer_surface(
          connection.layerShell(), surface, output, ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY, "valdrix")) {
  auto* const layer = layerSurface_.get();
  zwlr_layer_surface_v1_add_listener(layer, &listener, this);
  zwlr_layer_surface_v1_set_size(layer, static_cast<std::uint32_t>(frame.width()),
                                 static_cast<std::uint32_t>(frame.height()));
  zwlr_layer_surface_v1_set_anchor(
      layer, ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP | ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT);
  zwlr_layer_surface_v1_set_margin(layer, frame.top(), 0, 0, frame.left());
  // Beside no bar, but over them.
  zwlr_layer_surface_v1_set_exclusive_zone(layer, -1);
  zwlr_layer_surface_v1_set_keyboard_interactivity(layer, takesKeyboard ? 1 : 0);
}

}  // namespace valdrix::desktop
