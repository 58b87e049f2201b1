#include "desktop/wayland/WaylandPanelSurface.h"

#include <utility>

#include "desktop/wayland/WaylandLayerRole.h"
#include "desktop/wayland/WaylandPlasmaRole.h"

namespace valdrix::desktop {

WaylandPanelSurface::WaylandPanelSurface(WaylandConnection& connection,
                                         const WaylandScreens::Place& place, const QRect& frame,
                                         bool takesKeyboard, Handlers handlers)
    : connection_(connection),
      handlers_(std::move(handlers)),
      size_(frame.size()),
      scale_(place.description.bufferScale),
      surface_(wl_compositor_create_surface(connection.compositor())),
      role_(makeRole(place, frame, takesKeyboard)) {
  if (connection.viewporter() && connection.fractionalScaleManager()) {
    scale_ = place.description.scale();
    followFractionalScale();
  }
}

std::unique_ptr<WaylandSurfaceRole> WaylandPanelSurface::makeRole(
    const WaylandScreens::Place& place, const QRect& frame, bool takesKeyboard) {
  WaylandSurfaceRole::Handlers handlers{.configured =
                                            [this] {
                                              isConfigured_ = true;
                                              handlers_.configured();
                                            },
                                        .closed = handlers_.closed};
  if (!takesKeyboard && connection_.needsPlasmaShell())
    return std::make_unique<WaylandPlasmaRole>(
        connection_, surface_.get(), place.description.logical.topLeft() + frame.topLeft(),
        std::move(handlers));
  return std::make_unique<WaylandLayerRole>(connection_, surface_.get(), place.output, frame,
                                            takesKeyboard, std::move(handlers));
}

void WaylandPanelSurface::followFractionalScale() {
  static constexpr wp_fractional_scale_v1_listener listener{
      .preferred_scale = [](void* data, wp_fractional_scale_v1*, std::uint32_t scale) {
        constexpr double unit = 120;
        static_cast<WaylandPanelSurface*>(data)->setPreferredScale(scale / unit);
      }};
  viewport_.reset(wp_viewporter_get_viewport(connection_.viewporter(), surface_.get()));
  wp_viewport_set_destination(viewport_.get(), size_.width(), size_.height());
  fractionalScale_.reset(wp_fractional_scale_manager_v1_get_fractional_scale(
      connection_.fractionalScaleManager(), surface_.get()));
  wp_fractional_scale_v1_add_listener(fractionalScale_.get(), &listener, this);
}

void WaylandPanelSurface::setPreferredScale(double scale) {
  if (scale > 0 && std::exchange(scale_, scale) != scale) handlers_.scaleChanged();
}

QSize WaylandPanelSurface::pictureSize() const {
  return {qRound(size_.width() * scale_), qRound(size_.height() * scale_)};
}

void WaylandPanelSurface::attach(WaylandBuffers::Buffer& buffer, const QRegion& damage) {
  if (!viewport_) wl_surface_set_buffer_scale(surface_.get(), static_cast<int>(scale_));
  wl_surface_attach(surface_.get(), buffer.get(), 0, 0);
  for (const QRect& part : damage)
    wl_surface_damage_buffer(surface_.get(), part.x(), part.y(), part.width(), part.height());
  buffer.setBusy();
}

void WaylandPanelSurface::requestFrame() {
  if (frameCallback_) return;
  static constexpr wl_callback_listener listener{
      .done = [](void* data, wl_callback*, std::uint32_t) {
        static_cast<WaylandPanelSurface*>(data)->frameDone();
      }};
  frameCallback_.reset(wl_surface_frame(surface_.get()));
  wl_callback_add_listener(frameCallback_.get(), &listener, this);
}

void WaylandPanelSurface::frameDone() {
  frameCallback_.reset();
  handlers_.frameShown();
}

void WaylandPanelSurface::commit() { wl_surface_commit(surface_.get()); }

}  // namespace valdrix::desktop
