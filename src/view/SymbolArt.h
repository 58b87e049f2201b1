#pragma once

#include <string_view>
#include <vector>

#include "view/Font.h"
#include "view/Geometry.h"
#include "view/Path.h"

namespace valdrix::view {

/// One filled or stroked outline of a symbol, in em (1 is the font size).
struct SymbolPart {
  Path path;  ///< filled by the non-zero winding rule
  bool isStroked = false;
  double lineWidth = 0;
  bool hasRoundCaps = false;
};

/// A drawn sign that stands in text, in em.
struct Symbol {
  Size size;
  std::vector<SymbolPart> parts;
};

/// The artwork of a symbol, its strokes as heavy as `weight`; null for a name that is not drawn.
/// Lasts as long as the program. Main thread only.
///
/// All speakers are of one width with the speaker in one place, and so are both suns, so that
/// nothing moves when one takes another's place. The signs of controls fill a square, all of one
/// size.
[[nodiscard]] const Symbol* symbolNamed(std::string_view name, FontWeight weight);

}  // namespace valdrix::view
