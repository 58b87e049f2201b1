#pragma once

#include <QRect>

#include "desktop/wayland/WaylandConnection.h"
#include "desktop/wayland/WaylandSurfaceRole.h"

namespace valdrix::desktop {

/// A surface in the layer shell's topmost layer.
class WaylandLayerRole final : public WaylandSurfaceRole {
 public:
  /// `frame` is in logical pixels from the top left of `output`.
  WaylandLayerRole(WaylandConnection& connection, wl_surface* surface, wl_output* output,
                   const QRect& frame, bool takesKeyboard, Handlers handlers);

 private:
  static const zwlr_layer_surface_v1_listener listener;

  WaylandOwned<zwlr_layer_surface_v1> layerSurface_;
};

}  // namespace valdrix::desktop
