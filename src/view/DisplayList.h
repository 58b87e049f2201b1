#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "view/Color.h"
#include "view/Damage.h"
#include "view/Font.h"
#include "view/Geometry.h"
#include "view/Path.h"

namespace valdrix::view {

class Canvas;

/// One thing to draw, in the coordinates of the hosting view.
struct DisplayItem {
  enum class Kind { fill, stroke, text };

  /// Which view of the tree drew it; stays the same from frame to frame.
  std::uint64_t owner = 0;
  Kind kind = Kind::fill;
  Path path;                  ///< fill and stroke
  double lineWidth = 0;       ///< stroke, in points
  bool hasRoundCaps = false;  ///< stroke
  std::string text;           ///< text, UTF-8
  TextStyle style;            ///< text
  Rect bounds;                ///< what the item may touch; for text also where it is laid out
  Color color;
  /// What it is clipped to, innermost last; shared between the items of one clipped view.
  std::vector<std::shared_ptr<const Path>> clips;

  /// Whether both draw the same pixels.
  [[nodiscard]] bool looksLike(const DisplayItem& other) const;
};

/// Everything that one frame draws, back to front.
using DisplayList = std::vector<DisplayItem>;

/// Forgets the clips that take nothing away from an item, which then is drawn and changes apart
/// from them.
void dropIdleClips(DisplayList& list);

/// Where two lists look different.
[[nodiscard]] Damage difference(const DisplayList& before, const DisplayList& after);

/// Whether the items leave nothing in `rect` that what was there before could shine through.
[[nodiscard]] bool isOpaque(const DisplayList& list, const Rect& rect);

/// Draws the items that touch `dirty`.
void draw(const DisplayList& list, Canvas& canvas, const Rect& dirty);

}  // namespace valdrix::view
