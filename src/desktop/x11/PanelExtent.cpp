#include "desktop/x11/PanelExtent.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace valdrix::desktop {

namespace {

// The panel's springs go beyond their targets by 18 % of the way from rest, and further when they
// turn round on their way; then a part of the size stands for the way.
int overshoot(int from, int to, int size) {
  return std::max(std::abs(to - from) / 5, size / 12) + 2;
}

QRect withOvershoot(const QRect& needed, const QRect& painted, const QRect& target) {
  if (painted.isEmpty() || target.isEmpty()) return needed;
  const auto across = [&](int from, int to) { return overshoot(from, to, needed.width()); };
  const auto down = [&](int from, int to) { return overshoot(from, to, needed.height()); };
  return needed.adjusted(-across(painted.left(), target.left()), -down(painted.top(), target.top()),
                         across(painted.right(), target.right()),
                         down(painted.bottom(), target.bottom()));
}

}  // namespace

bool PanelExtent::follow(const QRect& painted, const QRect& target) {
  const QRect needed = painted | target;
  const QRect roomy = withOvershoot(needed, painted, target);
  QRect next = rectangle_;
  if (needed.left() < next.left()) next.setLeft(roomy.left());
  if (needed.top() < next.top()) next.setTop(roomy.top());
  if (needed.right() > next.right()) next.setRight(roomy.right());
  if (needed.bottom() > next.bottom() || next.height() > 2 * roomy.height())
    next.setBottom(roomy.bottom());
  return change(next);
}

bool PanelExtent::settle(const QRect& painted, const QRect& target) {
  return change(painted | target);
}

bool PanelExtent::change(const QRect& rectangle) {
  const QRect next = rectangle.isEmpty() ? QRect(0, 0, 1, 1) : rectangle;
  return std::exchange(rectangle_, next) != next;
}

}  // namespace valdrix::desktop
