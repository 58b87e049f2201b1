#pragma once

#include <QRect>

namespace valdrix::desktop {

/// How much of a panel's place its window covers, in pixels of the panel. Not every desktop heeds
/// what a window leaves to those below it, so a window is no larger than what there is to see. A
/// window that changes its size costs more than one that is painted on, and one whose top left
/// moves may be shown at the new place with the old picture for a moment: it grows once for a whole
/// animation, gives back its lower half early, and the rest when nothing moves any more.
class PanelExtent {
 public:
  /// Makes room for what is painted now and for the way to `target`, which a spring overshoots, and
  /// gives back what is much too high for that. Whether it takes another rectangle.
  bool follow(const QRect& painted, const QRect& target);
  /// Leaves what nothing moves through any more. Whether that makes another rectangle.
  bool settle(const QRect& painted, const QRect& target);

  /// Never empty, because no window is.
  [[nodiscard]] const QRect& rectangle() const { return rectangle_; }

 private:
  bool change(const QRect& rectangle);

  QRect rectangle_{0, 0, 1, 1};
};

}  // namespace valdrix::desktop
