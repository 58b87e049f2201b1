#include "desktop/x11/PanelExtent.h"

#include <algorithm>
#include <cstdlib>

namespace valdrix::desktop {

namespace {

// The panel's springs go beyond their targets by 18 % of the way at the most. The pixels are for
// what moves by very little.
int overshoot(int from, int to) { return std::abs(to - from) / 5 + 2; }

}  // namespace

bool PanelExtent::grow(const QRect& painted, const QRect& target) {
  const QRect needed = painted | target;
  if (rectangle_.contains(needed)) return false;
  QRect grown = rectangle_ | needed;
  if (!painted.isEmpty() && !target.isEmpty()) {
    if (needed.left() < rectangle_.left())
      grown.setLeft(needed.left() - overshoot(painted.left(), target.left()));
    if (needed.right() > rectangle_.right())
      grown.setRight(needed.right() + overshoot(painted.right(), target.right()));
    if (needed.top() < rectangle_.top())
      grown.setTop(needed.top() - overshoot(painted.top(), target.top()));
    if (needed.bottom() > rectangle_.bottom())
      grown.setBottom(needed.bottom() + overshoot(painted.bottom(), target.bottom()));
  }
  return change(grown);
}

bool PanelExtent::settle(const QRect& painted, const QRect& target) {
  return change(painted | target);
}

bool PanelExtent::change(const QRect& rectangle) {
  const QRect next = rectangle.isEmpty() ? QRect(0, 0, 1, 1) : rectangle;
  return std::exchange(rectangle_, next) != next;
}

}  // namespace valdrix::desktop
