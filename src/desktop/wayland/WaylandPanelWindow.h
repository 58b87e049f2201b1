#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "desktop/ui/PanelPainter.h"
#include "desktop/wayland/WaylandBuffers.h"
#include "desktop/wayland/WaylandInputRegion.h"
#include "desktop/wayland/WaylandPanelSurface.h"
#include "desktop/wayland/WaylandScreens.h"
#include "desktop/wayland/WaylandSeats.h"
#include "platform/PanelWindow.h"

namespace valdrix::desktop {

class QtTextMetrics;

/// What the panels of one compositor share.
struct WaylandPanelServices {
  WaylandConnection& connection;
  WaylandScreens& screens;
  WaylandPointer& pointer;
  WaylandSeats& seats;
  const QtTextMetrics& textMetrics;
  /// Frames that all panels together have painted.
  std::uint64_t& framesDrawn;
  /// Called with the place when somebody asks for the menu there: points from the top left of the
  /// screens, as Qt has them.
  const std::function<void(QPoint)>& onMenuRequested;
};

/// A panel under a Wayland compositor: a surface in front of everything, which the compositor
/// neither focuses nor moves. The compositor says when the next frame may be drawn, and says
/// nothing while the panel cannot be seen.
class WaylandPanelWindow final : public platform::PanelWindow {
 public:
  WaylandPanelWindow(const WaylandPanelServices& services, const view::Rect& contentRectangle,
                     const platform::PanelConfiguration& configuration);
  ~WaylandPanelWindow() override;

  void setContentView(view::HostingView* content) override;
  void orderFrontRegardless() override;
  void orderOut() override;
  [[nodiscard]] bool ignoresMouseEvents() const override;
  void setIgnoresMouseEvents(bool ignores) override;
  void setTrackedRectangle(const view::Rect& rectangle) override;

  /// How many frames have been painted so far.
  [[nodiscard]] std::uint64_t framesDrawn() const { return framesDrawn_; }
  /// Whether the compositor has a picture of it.
  [[nodiscard]] bool isMapped() const { return isMapped_; }

 private:
  [[nodiscard]] WaylandInputRegion::Handlers inputHandlers();
  void place();
  void makeSurface();
  void endSurface();
  void applyTrackedRectangle();
  void rescale();
  void requestFrame();
  void configured();
  void frameShown();
  void drawFrame();
  void paint(WaylandBuffers::Buffer& buffer);
  void commit();
  void leaveContent();
  /// Where a place on the surface lies on the screen.
  [[nodiscard]] view::Point toScreen(QPointF position) const;
  /// The same in coordinates of the window, and of what it shows.
  [[nodiscard]] view::Point toWindow(QPointF position) const;
  [[nodiscard]] view::Point toContent(QPointF position) const;
  /// How high the pointer counts as being when it is not on the panel, in screen coordinates.
  [[nodiscard]] double elsewhere() const;
  void pointerMoved(std::optional<QPointF> position, bool isInside);
  void pointerPressed(QPointF position, bool isPressed);
  void requestMenu(QPointF position);

  WaylandPanelServices services_;
  const view::Rect contentRectangle_;
  const bool takesKeyboard_;
  view::HostingView* content_ = nullptr;
  std::optional<WaylandScreens::Place> place_;
  QRect frame_;  ///< in logical pixels from the output's top left
  view::Rect trackedRectangle_;
  bool isShown_ = false;
  bool isMapped_ = false;
  bool isPointerInContent_ = false;
  bool isDrawScheduled_ = false;
  bool wantsFrame_ = false;
  QRegion damage_;  ///< what the compositor has not seen yet, in device pixels of the surface
  std::uint64_t framesDrawn_ = 0;
  PanelPainter painter_;
  WaylandInputRegion inputRegion_;
  WaylandBuffers buffers_;
  std::unique_ptr<WaylandPanelSurface> surface_;
  Token seatsTarget_;
  Token screensObserver_;
  QObject context_;
};

}  // namespace valdrix::desktop
