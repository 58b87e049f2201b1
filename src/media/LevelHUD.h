#pragma once

#include <string>

#include "view/View.h"

namespace valdrix {

/// What both level indicators show, in a row: a symbol, a thin bar and a percentage.
struct LevelHUD {
  std::string symbolName;
  /// The filled part of the bar, from 0 to 1; a dot stays at 0.
  float fraction = 0;
  /// Opacity of the filled part, from 0 to 1.
  double fillOpacity = 1;
  std::string percentText;

  [[nodiscard]] view::View body() const;
  bool operator==(const LevelHUD&) const = default;
};

}  // namespace valdrix
