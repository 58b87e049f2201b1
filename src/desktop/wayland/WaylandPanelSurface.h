#pragma once

#include <functional>
#include <memory>

#include <QRect>

#include "desktop/wayland/WaylandBuffers.h"
#include "desktop/wayland/WaylandConnection.h"
#include "desktop/wayland/WaylandScreens.h"
#include "desktop/wayland/WaylandSurfaceRole.h"

namespace valdrix::desktop {

/// A surface in front of everything on one output, at a place of its own. It can be drawn on from
/// when it is configured.
class WaylandPanelSurface {
 public:
  struct Handlers {
    /// It can be drawn on, or wants to be told anew what it shows.
    std::function<void()> configured;
    /// The next picture may be drawn: the compositor has shown the one before.
    std::function<void()> frameShown;
    /// Pictures are to be drawn at another scale.
    std::function<void()> scaleChanged;
    /// The compositor has taken it away.
    std::function<void()> closed;
  };

  /// `frame` is in logical pixels from the output's top left, and may reach beyond the output.
  /// `connection` must outlive it.
  WaylandPanelSurface(WaylandConnection& connection, const WaylandScreens::Place& place,
                      const QRect& frame, bool takesKeyboard, Handlers handlers);
  WaylandPanelSurface(const WaylandPanelSurface&) = delete;
  WaylandPanelSurface& operator=(const WaylandPanelSurface&) = delete;

  [[nodiscard]] wl_surface* get() const { return surface_.get(); }
  [[nodiscard]] bool isConfigured() const { return isConfigured_; }
  /// A picture has been handed over that the compositor has not shown yet.
  [[nodiscard]] bool awaitsFrame() const { return static_cast<bool>(frameCallback_); }

  /// Device pixels per logical one of its pictures.
  [[nodiscard]] double scale() const { return scale_; }
  /// The size of its pictures.
  [[nodiscard]] QSize pictureSize() const;

  // What follows takes effect with `commit`.
  void attach(WaylandBuffers::Buffer& buffer, const QRegion& damage);
  /// `frameShown` is to be called.
  void requestFrame();
  void commit();

 private:
  [[nodiscard]] std::unique_ptr<WaylandSurfaceRole> makeRole(const WaylandScreens::Place& place,
                                                             const QRect& frame,
                                                             bool takesKeyboard);
  void followFractionalScale();
  void setPreferredScale(double scale);
  void frameDone();

  WaylandConnection& connection_;
  Handlers handlers_;
  QSize size_;
  double scale_;
  bool isConfigured_ = false;
  WaylandOwned<wl_surface> surface_;
  std::unique_ptr<WaylandSurfaceRole> role_;
  WaylandOwned<wp_viewport> viewport_;
  WaylandOwned<wp_fractional_scale_v1> fractionalScale_;
  WaylandOwned<wl_callback> frameCallback_;
};

}  // namespace valdrix::desktop
