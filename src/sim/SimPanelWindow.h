#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/PanelWindow.h"
#include "sim/ManualRunLoop.h"
#include "sim/SimPointer.h"
#include "sim/Trace.h"

namespace valdrix::sim {

/// A simulated panel. Draws its first frame when it is shown and from then on one per sixtieth of a
/// second of the manual clock while its content wants frames.
class SimPanelWindow final : public platform::PanelWindow {
 public:
  SimPanelWindow(Trace& trace, ManualRunLoop& runLoop, SimPointer& pointer,
                 const view::Rect& contentRectangle,
                 const platform::PanelConfiguration& configuration, double scale);
  ~SimPanelWindow() override;
  SimPanelWindow(const SimPanelWindow&) = delete;
  SimPanelWindow& operator=(const SimPanelWindow&) = delete;

  void setContentView(view::HostingView* content) override;
  void orderFrontRegardless() override;
  void orderOut() override;
  [[nodiscard]] bool ignoresMouseEvents() const override { return ignoresMouseEvents_; }
  void setIgnoresMouseEvents(bool ignores) override;
  void setTrackedRectangle(const view::Rect& rectangle) override;

  /// Where it is, in screen coordinates.
  [[nodiscard]] const view::Rect& frame() const { return frame_; }
  [[nodiscard]] const platform::PanelConfiguration& configuration() const { return configuration_; }
  [[nodiscard]] const view::Rect& trackedRectangle() const { return trackedRectangle_; }
  [[nodiscard]] view::HostingView* content() const { return content_; }
  [[nodiscard]] bool isVisible() const { return isVisible_; }
  /// How many frames differed from the one before and so were drawn.
  [[nodiscard]] std::uint64_t framesDrawn() const { return framesDrawn_; }

 private:
  friend class SimPointer;

  /// Whether the pointer matters there, given what it has rested through.
  [[nodiscard]] bool watches(view::Point point) const;
  [[nodiscard]] bool takes(view::Point point) const;
  void forgetRestingPointer() { restingPointer_.reset(); }
  void pointerMoved(view::Point point);
  void pointerPressed(view::Point point);
  void pointerReleased(view::Point point);
  void leaveContent();
  void requestFrame();
  void drawFrame();
  void traceToolTip();
  [[nodiscard]] view::Point toContent(view::Point point) const;

  Trace& trace_;
  ManualRunLoop& runLoop_;
  SimPointer& pointer_;
  const view::Rect frame_;
  const platform::PanelConfiguration configuration_;
  const double scale_;  ///< device pixels per point
  view::HostingView* content_ = nullptr;
  view::Rect trackedRectangle_;
  bool ignoresMouseEvents_;
  bool isVisible_ = false;
  bool isPointerInContent_ = false;
  std::string toolTip_;
  /// Under the pointer the tracked rectangle began or ended without motion.
  std::optional<view::Point> restingPointer_;
  std::uint64_t framesDrawn_ = 0;
  double latestFrame_;
  Token frameTimer_;
};

}  // namespace valdrix::sim
