#pragma once

#include <string>

#include "view/View.h"

namespace valdrix {

/// The volume indicator. Shows the level also while muted, with an empty, dimmed bar.
struct VolumeHUDView {
  /// Nominally 0 to 1; bar and percentage hold it to that.
  float level = 0;
  bool isMuted = false;

  [[nodiscard]] std::string symbolName() const;
  [[nodiscard]] view::View body() const;
  bool operator==(const VolumeHUDView&) const = default;
};

}  // namespace valdrix
