#pragma once

#include <functional>
#include <optional>

#include <QList>
#include <QPoint>
#include <QPointF>
#include <QRect>

#include "desktop/wayland/WaylandConnection.h"
#include "desktop/wayland/WaylandPointer.h"
#include "observation/Lifetime.h"

namespace valdrix::desktop {

/// The part of a panel's surface that the compositor hit-tests for us. Motion elsewhere never
/// reaches this process. Places are logical pixels of the surface, from its top left.
///
/// A region that changes under a resting pointer makes the compositor send enter and leave although
/// nothing moved. A pointer whose place is known keeps the pixel under it where it belonged before,
/// until it moves: a hole of one pixel in a rectangle that grew, one pixel more beside a rectangle
/// that shrank. Of a pointer elsewhere nobody knows the place before the region has grown over it:
/// an enter that comes while the compositor settles after such a change is the pointer that rested
/// there.
class WaylandInputRegion {
 public:
  struct Handlers {
    /// The pointer moved to a place, and whether that is inside the rectangle; no place when it
    /// left the surface.
    std::function<void(std::optional<QPointF> position, bool isInside)> moved;
    /// The main button went down or up.
    std::function<void(QPointF position, bool isPressed)> pressed;
    /// The secondary button went down there.
    std::function<void(QPointF position)> menuRequested;
    /// The region is another one: `applyTo` is to be called with the next commit.
    std::function<void()> changed;
    /// Calls a block when the compositor has taken account of all that was committed.
    std::function<void(std::function<void()>)> afterSettling;
    /// The place in screen coordinates.
    std::function<view::Point(QPointF position)> locate;
    /// Where the pointer counts as being when it has left from a place in screen coordinates.
    std::function<view::Point(view::Point last)> locateElsewhere;
  };

  /// `connection` and `pointer` must outlive it.
  WaylandInputRegion(WaylandConnection& connection, WaylandPointer& pointer, Handlers handlers);
  WaylandInputRegion(const WaylandInputRegion&) = delete;
  WaylandInputRegion& operator=(const WaylandInputRegion&) = delete;

  /// The rectangle that counts.
  void setRectangle(const QRect& rectangle);
  [[nodiscard]] bool ignoresMouseEvents() const { return ignoresMouseEvents_; }
  void setIgnoresMouseEvents(bool ignores);

  /// The surface is new, or gone.
  void show();
  void hide();
  /// Sets the region as part of the surface's next state, if it is not yet.
  void applyTo(wl_surface* surface);
  /// That state has been committed.
  void committed();

  // What the compositor says.
  void entered(QPointF position);
  void left();
  void moved(QPointF position);
  void button(std::uint32_t button, bool isPressed);

 private:
  /// What the compositor has yet to take account of, and may send enter or leave for.
  enum class Settling { nothing, hole, growth, appearance };

  [[nodiscard]] bool isInHole() const;
  [[nodiscard]] std::uint32_t kindOfMotion() const;
  void report(std::optional<QPointF> position);
  void rest(QPointF position);
  void makeHole();
  void settle();
  void settled(int change);
  void update();

  WaylandConnection& connection_;
  WaylandPointer& pointer_;
  Handlers handlers_;
  QRect rectangle_;
  bool ignoresMouseEvents_ = false;
  bool isShown_ = false;
  /// The compositor has the pointer on our surface.
  bool hasPointer_ = false;
  /// Where it is or was last seen; none when it went elsewhere.
  std::optional<QPointF> position_;
  bool isKnownOutside_ = false;  ///< everybody has been told that it is not in the rectangle
  /// The pixel under a resting pointer that belongs to the other side.
  std::optional<QPoint> exception_;
  bool isMainHeld_ = false;
  bool isRightHeld_ = false;
  QList<QRect> applied_;
  bool isApplied_ = false;
  Settling pendingSettling_ = Settling::nothing;  ///< from the next commit on
  Settling settling_ = Settling::nothing;
  int changes_ = 0;  ///< how many there have been that the compositor had to settle after
  /// It left while the compositor settled: it may be in what the region grew by.
  bool hasLeftUnsettled_ = false;
  Lifetime lifetime_;
};

}  // namespace valdrix::desktop
