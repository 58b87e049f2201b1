#pragma once

#include <string>
#include <vector>

#include <QPoint>
#include <QRect>

#include "view/Geometry.h"

namespace valdrix::desktop {

/// Where the screens lie in the two spaces that a panel has to do with: device pixels of the X
/// server (origin top left, y downwards) and points (origin bottom left of the main screen, y
/// upwards). A plain value.
struct ScreenLayout {
  struct Entry {
    std::string name;
    QRect device;
    view::Rect points;
    double scale = 1;
    double refreshRate = 60;  ///< Hz, above 0
    bool operator==(const Entry&) const = default;
  };
  std::vector<Entry> entries;  ///< the main screen first
  bool operator==(const ScreenLayout&) const = default;

  /// The screens as Qt knows them; its stand-in for "no screen" is none.
  [[nodiscard]] static ScreenLayout current();

  /// The screen on which a window with this rectangle hangs: the one with the middle of its top
  /// edge, else the main one. None without screens.
  [[nodiscard]] const Entry* screenFor(const view::Rect& rectangle) const;

  /// Where a rectangle in points lies on `entry` and beyond it, to whole device pixels.
  [[nodiscard]] static QRect toDevice(const view::Rect& rectangle, const Entry& entry);
  /// All device pixels whose place (see `toPoints`) lies in the rectangle or on one of its edges.
  [[nodiscard]] static QRect pixelsInside(const view::Rect& rectangle, const Entry& entry);
  /// Where a device pixel is. Its top edge counts, so that the topmost row of a screen lies on the
  /// screen's top edge.
  [[nodiscard]] view::Point toPoints(QPoint device) const;
};

}  // namespace valdrix::desktop
