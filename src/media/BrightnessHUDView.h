#pragma once

#include <string>

#include "view/View.h"

namespace valdrix {

/// The brightness indicator.
struct BrightnessHUDView {
  /// Nominally 0 to 1; bar and percentage hold it to that.
  float level = 0;

  [[nodiscard]] std::string symbolName() const;
  [[nodiscard]] view::View body() const;
  bool operator==(const BrightnessHUDView&) const = default;
};

}  // namespace valdrix
