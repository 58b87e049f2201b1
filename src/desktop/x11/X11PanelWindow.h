#pragma once

#include <cstdint>
#include <functional>

#include <QRect>
#include <QTimer>

#include "desktop/ui/PanelPainter.h"
#include "desktop/x11/FramePacer.h"
#include "desktop/x11/ScreenLayout.h"
#include "desktop/x11/X11InputRegion.h"
#include "desktop/x11/X11PanelSurface.h"
#include "desktop/x11/X11StackingGuard.h"
#include "platform/PanelWindow.h"

namespace valdrix::desktop {

class QtTextMetrics;
class X11Cursor;
class X11Manager;
class X11Overlay;
class X11Screens;
class X11WindowNews;

/// What the panels of one X server share.
struct X11PanelServices {
  X11Connection& connection;
  X11Pointer& pointer;
  X11Cursor& cursor;
  X11Screens& screens;
  X11Manager& compositing;
  X11WindowNews& windowNews;
  X11Overlay& overlay;
  const QtTextMetrics& textMetrics;
  /// Frames that all panels together have painted.
  std::uint64_t& framesDrawn;
  /// Called with the place when somebody asks for the menu there: points from the top left of the
  /// screens, as Qt has them.
  const std::function<void(QPoint)>& onMenuRequested;
};

/// A panel on an X server: an override-redirect window, which no window manager moves, focuses or
/// puts below a fullscreen window, and an input region in front of it. It keeps its picture and
/// sends the server what changed.
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
  [[nodiscard]] const X11PanelSurface& surface() const { return surface_; }

 private:
  void place();
  void applyTrackedRectangle();
  void raise();
  void lookAtOverlay();
  void drawFrame();
  [[nodiscard]] QRect target() const;
  void makeRoom();
  void giveRoomBack();
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
  view::Rect trackedRectangle_;
  QRect trackedPixels_;  ///< of the root
  bool isShown_ = false;
  bool isPointerInContent_ = false;
  X11PanelSurface surface_;
  PanelPainter painter_;
  std::uint64_t framesDrawn_ = 0;
  FramePacer pacer_;
  QTimer restTimer_;
  X11InputRegion inputRegion_;
  X11StackingGuard stackingGuard_;
  Token eventHandler_;
  Token newsObserver_;
  Token screensObserver_;
  Token compositingObserver_;
  Token cursorObserver_;
};

}  // namespace valdrix::desktop
