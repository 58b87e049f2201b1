#pragma once

#include <memory>

#include "view/Geometry.h"

namespace valdrix::view {
class HostingView;
}

namespace valdrix::platform {

/// What kind of window a panel is. The defaults describe an ordinary window; an adapter honours
/// what its desktop knows.
struct PanelConfiguration {
  /// Without title bar or border.
  bool isBorderless = false;
  /// Stacking order: 0 for ordinary windows, 25 for a desktop's bars, 101 for pop-up menus. A panel
  /// at 26 stays above bars and fullscreen windows.
  int level = 0;
  bool isOpaque = true;
  bool hasShadow = true;
  /// Shown on every workspace, unmoved when the workspace changes, and beside fullscreen windows.
  bool canJoinAllSpaces = false;
  bool isStationary = false;
  bool isFullScreenAuxiliary = false;
  /// Clicks, scrolls and motion go to what lies below.
  bool ignoresMouseEvents = false;
  bool acceptsMouseMovedEvents = false;
  bool isMovable = true;
  bool isMovableByBackground = true;
  bool hidesOnDeactivate = false;
  /// Whether it may take the keyboard focus, and be the application's main window.
  bool canBecomeKey = true;
  bool canBecomeMain = true;
};

/// One window that shows a hosting view. Made hidden; destroying it takes it off the screen. Main
/// thread only.
///
/// An adapter delivers the pointer to the hosting view while the window accepts it, draws a frame
/// when the hosting view asks for one (at most one per refresh of the screen, and only the part
/// that changed), and follows the scale of its screen.
class PanelWindow {
 public:
  virtual ~PanelWindow() = default;

  /// Shows `content` in the whole window; it must outlive the window or be replaced before it ends.
  /// Null shows nothing.
  virtual void setContentView(view::HostingView* content) = 0;

  /// Puts the window in front without making the application active or taking the focus.
  virtual void orderFrontRegardless() = 0;
  virtual void orderOut() = 0;

  [[nodiscard]] virtual bool ignoresMouseEvents() const = 0;
  /// Whether clicks and scrolls pass through the whole window.
  virtual void setIgnoresMouseEvents(bool ignores) = 0;

  /// The part of the window, in its own coordinates (origin top left), in which the pointer matters
  /// to the core right now. A desktop that cannot watch the pointer for free reports motion only
  /// where this rectangle begins or ends and inside it, and while `ignoresMouseEvents` is false
  /// takes clicks only inside it. A rectangle that changes under a resting pointer is no motion:
  /// until the pointer moves, nothing is reported and clicks go where they went before.
  virtual void setTrackedRectangle(const view::Rect& rectangle) = 0;
};

/// Makes panel windows.
class PanelWindows {
 public:
  virtual ~PanelWindows() = default;

  /// A window whose content covers `contentRectangle` (screen coordinates, origin bottom left),
  /// which may reach beyond the screen. Never null: without a display the window shows nothing.
  [[nodiscard]] virtual std::unique_ptr<PanelWindow> makeWindow(
      const view::Rect& contentRectangle, const PanelConfiguration& configuration) = 0;
};

}  // namespace valdrix::platform
