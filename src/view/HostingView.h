#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "observation/Token.h"
#include "view/Canvas.h"
#include "view/DisplayList.h"
#include "view/Geometry.h"
#include "view/Transaction.h"
#include "view/View.h"

namespace valdrix::view {

class ViewGraph;

/// Shows a view: keeps its tree between frames, evaluates bodies when what they read changes, lays
/// the tree out, animates it and lists what to draw. Main thread only.
///
/// The window that shows it sets `onNeedsFrame`, and for each frame calls `prepareFrame` and then
/// `draw` with the damaged part. Between frames nothing runs but the timers of timelines that can
/// be seen and of an explanation that is about to come. Explanations are drawn in front of the
/// views, so a window needs nothing of its own for them.
class HostingView {
 public:
  /// What a tree needs of the world.
  struct Services {
    const TextMetrics& textMetrics;
    /// Seconds on the clock that animations run by.
    std::function<double()> now;
    /// Calls a block every so many seconds until the token ends.
    std::function<Token(double interval, std::function<void()> block)> scheduleRepeatingTimer;
  };

  HostingView(const View& content, Services services);
  ~HostingView();
  HostingView(const HostingView&) = delete;
  HostingView& operator=(const HostingView&) = delete;

  /// The area it fills in its window, in points.
  void setFrame(const Rect& frame);
  [[nodiscard]] const Rect& frame() const;

  /// Which sides follow the window's size, as a bit set.
  enum Autoresizing : std::uint32_t { widthSizable = 2, heightSizable = 16 };
  void setAutoresizingMask(std::uint32_t mask);
  /// The window has a new size; the frame follows as the mask says.
  void windowResized(Size size);

  /// Device pixels per point, above 0; resting edges are put on whole pixels.
  void setScale(double scale);

  /// Called when a frame is wanted, once until the next `prepareFrame`. Set by the window.
  void setOnNeedsFrame(std::function<void()> onNeedsFrame);
  [[nodiscard]] bool needsFrame() const;

  /// Called when a change starts to move at least one thing, with its animation.
  void setOnAnimationStarted(std::function<void(const Animation&)> onAnimationStarted);

  struct Frame {
    /// What looks different from the frame before; empty when nothing does.
    Damage damage;
    /// Whether something still moves, so that another frame has been asked for.
    bool isAnimating = false;
  };
  /// Brings the tree up to date with what it reads and with the clock. `lookAhead` is the time in
  /// seconds until the frame will be seen: moving things are drawn where they will be then.
  Frame prepareFrame(double lookAhead = 1.0 / 60);

  /// Lays out, once, what cannot be seen yet, so that it costs no more than anything else when it
  /// comes to be seen. Nothing of that is part of a frame: for when there is time.
  void prepareHiddenLayers();

  /// Draws what the latest `prepareFrame` found, as far as it touches `dirty`.
  void draw(Canvas& canvas, const Rect& dirty) const;
  [[nodiscard]] const DisplayList& displayList() const;

  /// The pointer is at `point`, in the hosting view's coordinates. Runs hover actions.
  void pointerMoved(Point point);
  /// The pointer has left the view, or the view no longer accepts it.
  void pointerExited();
  /// The main button went down or up. A click is both within one button.
  void pointerPressed(Point point);
  void pointerReleased(Point point);
  /// What the view under the pointer explains itself with; empty for nothing.
  [[nodiscard]] const std::string& toolTip() const;

 private:
  std::unique_ptr<ViewGraph> graph_;
};

}  // namespace valdrix::view
