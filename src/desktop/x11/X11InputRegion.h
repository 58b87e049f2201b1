#pragma once

#include <functional>
#include <optional>

#include <QList>
#include <QObject>
#include <QPoint>
#include <QRect>

#include "desktop/x11/X11Connection.h"
#include "desktop/x11/X11PanelSurface.h"
#include "desktop/x11/X11Pointer.h"
#include "observation/Lifetime.h"

namespace valdrix::desktop {

/// The part of a panel that the X server hit-tests for us: the rectangle that matters, as the input
/// shape of the panel's window. Motion elsewhere costs nothing. A window that is cut out takes the
/// pointer only where it shows something; an invisible input-only window in front of it takes the
/// whole rectangle then. It is not there otherwise, because a Wayland compositor knows only windows
/// that show something, and would not let the pointer leave another one.
///
/// A shape that changes under a resting pointer makes the server send Enter and Leave although
/// nothing moved. So the pixel under the pointer keeps belonging to where it belonged before, until
/// the pointer moves: a hole of one pixel in a rectangle that grew, one pixel more beside a
/// rectangle that shrank. An Enter alone is therefore no motion; the server tells of motion itself.
class X11InputRegion {
 public:
  struct Handlers {
    /// The pointer moved to a place (device pixels of the root), and whether it is inside now.
    std::function<void(QPoint position, bool isInside)> moved;
    /// The main button went down or up there.
    std::function<void(QPoint position, bool isPressed)> pressed;
    /// The secondary button went down there. The pointer is free for a menu to take.
    std::function<void(QPoint position)> menuRequested;
  };

  /// For the panel that `surface` shows. All but the handlers must outlive it.
  X11InputRegion(X11Connection& connection, X11Pointer& pointer, const X11PanelSurface& surface,
                 Handlers handlers);
  ~X11InputRegion();
  X11InputRegion(const X11InputRegion&) = delete;
  X11InputRegion& operator=(const X11InputRegion&) = delete;

  /// Where the panel lies, in device pixels of the root.
  void setFrame(const QRect& frame);
  /// The rectangle that counts, in device pixels of the root.
  void setRectangle(const QRect& rectangle);
  /// A rectangle around all that takes the pointer, or would if that were not there already.
  [[nodiscard]] QRect bounds() const {
    return exception_ ? rectangle_ | QRect(*exception_, QSize(1, 1)) : rectangle_;
  }
  [[nodiscard]] bool ignoresMouseEvents() const { return ignoresMouseEvents_; }
  void setIgnoresMouseEvents(bool ignores);

  void show();
  void hide();
  /// Puts it in front of everything.
  void raise();
  /// The panel's own window has become another size.
  void apply();
  /// It is cut out now, or is no longer.
  void updateWindows();
  void setCursor(xcb_cursor_t cursor);
  /// The window in front of the panel's own one, mapped or not.
  [[nodiscard]] xcb_window_t window() const { return window_; }

 private:
  [[nodiscard]] bool takes(QPoint position) const;
  [[nodiscard]] bool isOurs(xcb_window_t window) const {
    return window == window_ || window == surface_.window();
  }
  void handle(const xcb_generic_event_t& event);
  void entered(const xcb_enter_notify_event_t& event);
  void left(const xcb_leave_notify_event_t& event);
  void button(const xcb_button_press_event_t& event, bool isPressed);
  void requestMenu(const xcb_button_press_event_t& event);
  void movedTo(QPoint position, std::uint16_t state);
  void report(const X11Pointer::Place& place, X11Pointer::Destination destination);
  void movedElsewhere(const X11Pointer::Place& place);
  void reportIfLeftWhileHidden();
  void reportIfLeftUnseen(const X11Pointer::Place& place);
  void settleAfterEntering();
  void settle();
  void watchWhileLost();

  X11Connection& connection_;
  X11Pointer& pointer_;
  const X11PanelSurface& surface_;
  Handlers handlers_;
  xcb_window_t window_ = XCB_WINDOW_NONE;
  xcb_cursor_t cursor_ = XCB_CURSOR_NONE;  ///< the one shown
  QRect frame_;
  QRect rectangle_;
  bool ignoresMouseEvents_ = false;
  bool isShown_ = false;
  /// The pixel under a resting pointer that belongs to the other side.
  std::optional<QPoint> exception_;
  QPoint position_;  ///< where the pointer was last known to be
  bool hasPointer_ = false;
  /// The pointer has come in, and no motion has told of it yet.
  bool hasEnteredUnmoved_ = false;
  /// What the windows have as their shapes, and where the panel's own one was then.
  std::optional<QList<QRect>> appliedParts_;
  QPoint appliedOrigin_;
  Token lostPointerWatch_;
  Token eventHandler_;
  Token batchHandler_;
  Token motionListener_;
  QObject context_;
  Lifetime lifetime_;
};

}  // namespace valdrix::desktop
