#pragma once

#include <cstdint>

#include <QImage>
#include <QRect>
#include <QRegion>

#include "desktop/x11/AlphaShape.h"
#include "desktop/x11/PanelExtent.h"
#include "desktop/x11/X11Connection.h"

namespace valdrix::desktop {

class X11Manager;

/// What is to be seen of a panel on an X server: its picture, and an override-redirect window with
/// an alpha channel over as much of the panel's place as shows something. Where nothing blends
/// windows the window is cut out instead and covers the whole place, because a window that moves
/// and is cut out anew in two steps would show. Areas are in pixels from the panel's top left.
class X11PanelSurface {
 public:
  /// What it selects of the pointer.
  static constexpr std::uint32_t pointerEvents =
      XCB_EVENT_MASK_ENTER_WINDOW | XCB_EVENT_MASK_LEAVE_WINDOW | XCB_EVENT_MASK_POINTER_MOTION |
      XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE;

  /// A hidden window. Both must outlive it. Does nothing without a server.
  X11PanelSurface(X11Connection& connection, X11Manager& compositing, bool hasShadow);
  ~X11PanelSurface();
  X11PanelSurface(const X11PanelSurface&) = delete;
  X11PanelSurface& operator=(const X11PanelSurface&) = delete;

  /// The panel lies there, in device pixels of the root. The picture is a new, transparent one.
  void setFrame(const QRect& frame);
  [[nodiscard]] const QRect& frame() const { return frame_; }
  [[nodiscard]] QImage& picture() { return picture_; }

  void show();
  void hide();
  /// Puts it directly behind `sibling`.
  void stackBehind(xcb_window_t sibling);
  /// Covers an animation, or what rests; see `PanelExtent`. Whether the window has become another
  /// size.
  bool follow(const QRect& painted, const QRect& target);
  bool settle(const QRect& painted, const QRect& target);
  /// Whether there is no more room than that takes.
  [[nodiscard]] bool fits(const QRect& painted, const QRect& target) const {
    return extent_.rectangle() == (painted | target);
  }
  /// Sends what has been painted anew.
  void present(const QRegion& area);
  /// Takes account of a compositing manager that came or went.
  void updateOutline();

  [[nodiscard]] xcb_window_t window() const { return window_; }
  /// Whether the window has the outline of what it shows, outside of which it takes no pointer.
  [[nodiscard]] bool isCutOut() const;
  /// Where the window is, in device pixels of the root.
  [[nodiscard]] QRect place() const { return place_.translated(frame_.topLeft()); }

 private:
  void create(bool hasShadow);
  void setProperties(bool hasShadow);
  bool configure();
  void applyShape();
  void put(const QRect& area);

  X11Connection& connection_;
  X11Manager& compositing_;
  xcb_window_t window_ = XCB_WINDOW_NONE;
  xcb_colormap_t colormap_ = XCB_NONE;
  xcb_gcontext_t graphics_ = XCB_NONE;
  std::uint8_t depth_ = 0;
  QRect frame_;
  QRect place_;  ///< of the window, in pixels of the panel
  PanelExtent extent_;
  bool isShown_ = false;
  QImage picture_;
  AlphaShape shape_;
};

}  // namespace valdrix::desktop
