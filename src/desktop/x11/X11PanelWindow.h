#pragma once

#include <cstdint>
#include <functional>

#include <QImage>
#include <QRect>
#include <QRegion>

#include "desktop/ui/PanelPainter.h"
#include "desktop/x11/AlphaShape.h"
#include "desktop/x11/FramePacer.h"
#include "desktop/x11/ScreenLayout.h"
#include "desktop/x11/X11InputRegion.h"
#include "desktop/x11/X11StackingGuard.h"
#include "platform/PanelWindow.h"

namespace valdrix::desktop {

class QtTextMetrics;
class X11Cursor;
class X11Manager;
class X11Screens;

/// What the panels of one X server share.
struct X11PanelServices {
  X11Connection& connection;
  X11Pointer& pointer;
  X11Cursor& cursor;
  X11Screens& screens;
  X11Manager& compositing;
  const QtTextMetrics& textMetrics;
  /// Frames that all panels together have painted.
  std::uint64_t& framesDrawn;
  /// Called with the place when somebody asks for the menu there: points from the top left of the
  /// screens, as Qt has them.
  const std::function<void(QPoint)>& onMenuRequested;
};

/// A panel on an X server: an override-redirect window with an alpha channel, which no window
/// manager moves, focuses or puts below a fullscreen window, and an input region in front of it. It
/// keeps its picture and sends the server what changed.
class X11PanelWindow final : public platform::PanelWindow {
 public:
  X11PanelWindow(const X11PanelServices& services, const view::Rect& contentRectangle,
                 const platform::PanelConfiguration& configuration);
  ~X11PanelWindow() override;

  void setContentView(view::HostingView* content) override;
  void orderFrontRegardless() override;
  void orderOut() override;
  [[nodiscard]] bool ignoresMouseEvents() const override;
  void setIgnoresMouseEvents(bool ignores) override;
  void setTrackedRectangle(const view::Rect& rectangle) override;

  /// How many frames have been painted so far.
  [[nodiscard]] std::uint64_t framesDrawn() const { return framesDrawn_; }
  [[nodiscard]] xcb_window_t window() const { return window_; }
  /// Where it lies, in device pixels of the root.
  [[nodiscard]] const QRect& deviceFrame() const { return frame_; }

 private:
  void create(const platform::PanelConfiguration& configuration);
  void setProperties(bool hasShadow);
  void place();
  void applyTrackedRectangle();
  void raise();
  void drawFrame();
  void present(const QRegion& area);
  void put(const QRect& area);
  void applyShape();
  void handle(const xcb_generic_event_t& event);
  void pointerMoved(QPoint position, bool isInside);
  void pointerPressed(QPoint position, bool isPressed);
  void requestMenu(QPoint position);
  void leaveContent();
  void updateCursor();
  [[nodiscard]] view::Point toContent(QPoint position) const;

  X11PanelServices services_;
  const view::Rect contentRectangle_;
  view::HostingView* content_ = nullptr;
  ScreenLayout::Entry screen_;
  bool hasScreen_ = false;
  xcb_window_t window_ = XCB_WINDOW_NONE;
  xcb_colormap_t colormap_ = XCB_NONE;
  xcb_gcontext_t graphics_ = XCB_NONE;
  std::uint8_t depth_ = 0;
  QRect frame_;
  view::Rect trackedRectangle_;
  bool isShown_ = false;
  bool isPointerInContent_ = false;
  QImage image_;
  PanelPainter painter_;
  AlphaShape shape_;
  std::uint64_t framesDrawn_ = 0;
  FramePacer pacer_;
  X11InputRegion inputRegion_;
  X11StackingGuard stackingGuard_;
  Token eventHandler_;
  Token screensObserver_;
  Token compositingObserver_;
  Token cursorObserver_;
};

}  // namespace valdrix::desktop
