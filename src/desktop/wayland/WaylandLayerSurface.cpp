#include "desktop/wayland/WaylandLayerSurface.h"

#include <utility>

namespace valdrix::desktop {

const zwlr_layer_surface_v1_listener WaylandLayerSurface::layerListener{
    .configure = [](void* data, zwlr_layer_surface_v1*, std::uint32_t serial, std::uint32_t,
                    std::uint32_t) { static_cast<WaylandLayerSurface*>(data)->configure(serial); },
    .closed =
        [](void* data, zwlr_layer_surface_v1*) {
          // Copied, because it ends the surface.
          const auto closed = static_cast<WaylandLayerSurface*>(data)->handlers_.closed;
          closed();
        },
};

WaylandLayerSurface::WaylandLayerSurface(WaylandConnection& connection,
                                         const WaylandScreens::Place& place, const QRect& frame,
                                         bool takesKeyboard, Handlers handlers)
    : connection_(connection),
      handlers_(std::move(handlers)),
      size_(frame.size()),
      scale_(place.description.bufferScale),
      surface_(wl_compositor_create_surface(connection.compositor())),
      layerSurface_(zwlr_layer_shell_v1_get_layer_surface(
          connection.layerShell(), surface_.get(), place.output, ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY,
          "valdrix")) {
  auto* const layer = layerSurface_.get();
  zwlr_layer_surface_v1_add_listener(layer, &layerListener, this);
  zwlr_layer_surface_v1_set_size(layer, static_cast<std::uint32_t>(frame.width()),
                                 static_cast<std::uint32_t>(frame.height()));
  zwlr_layer_surface_v1_set_anchor(
      layer, ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP | ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT);
  zwlr_layer_surface_v1_set_margin(layer, frame.top(), 0, 0, frame.left());
  // Beside no bar, but over them.
  zwlr_layer_surface_v1_set_exclusive_zone(layer, -1);
  zwlr_layer_surface_v1_set_keyboard_interactivity(layer, takesKeyboard ? 1 : 0);
  if (connection.viewporter() && connection.fractionalScaleManager()) {
    scale_ = place.description.scale();
    followFractionalScale();
  }
}

void WaylandLayerSurface::followFractionalScale() {
  static constexpr wp_fractional_scale_v1_listener listener{
      .preferred_scale = [](void* data, wp_fractional_scale_v1*, std::uint32_t scale) {
        constexpr double unit = 120;
        static_cast<WaylandLayerSurface*>(data)->setPreferredScale(scale / unit);
      }};
  viewport_.reset(wp_viewporter_get_viewport(connection_.viewporter(), surface_.get()));
  wp_viewport_set_destination(viewport_.get(), size_.width(), size_.height());
  fractionalScale_.reset(wp_fractional_scale_manager_v1_get_fractional_scale(
      connection_.fractionalScaleManager(), surface_.get()));
  wp_fractional_scale_v1_add_listener(fractionalScale_.get(), &listener, this);
}

void WaylandLayerSurface::setPreferredScale(double scale) {
  if (scale > 0 && std::exchange(scale_, scale) != scale) handlers_.scaleChanged();
}

QSize WaylandLayerSurface::pictureSize() const {
  return {qRound(size_.width() * scale_), qRound(size_.height() * scale_)};
}

void WaylandLayerSurface::configure(std::uint32_t serial) {
  zwlr_layer_surface_v1_ack_configure(layerSurface_.get(), serial);
  isConfigured_ = true;
  handlers_.configured();
}

void WaylandLayerSurface::attach(WaylandBuffers::Buffer& buffer, const QRegion& damage) {
  if (!viewport_) wl_surface_set_buffer_scale(surface_.get(), static_cast<int>(scale_));
  wl_surface_attach(surface_.get(), buffer.get(), 0, 0);
  for (const QRect& part : damage)
    wl_surface_damage_buffer(surface_.get(), part.x(), part.y(), part.width(), part.height());
  buffer.setBusy();
}

void WaylandLayerSurface::requestFrame() {
  if (frameCallback_) return;
  static constexpr wl_callback_listener listener{
      .done = [](void* data, wl_callback*, std::uint32_t) {
        static_cast<WaylandLayerSurface*>(data)->frameDone();
      }};
  frameCallback_.reset(wl_surface_frame(surface_.get()));
  wl_callback_add_listener(frameCallback_.get(), &listener, this);
}

void WaylandLayerSurface::frameDone() {
  frameCallback_.reset();
  handlers_.frameShown();
}

void WaylandLayerSurface::commit() { wl_surface_commit(surface_.get()); }

}  // namespace valdrix::desktop
