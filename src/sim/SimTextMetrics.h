#pragma once

#include "view/Canvas.h"

namespace valdrix::sim {

/// Text measured without any font: every character is 0.6 em wide plus the tracking, every line 1.2
/// em high. The same everywhere, so that layouts can be compared to the point.
class SimTextMetrics final : public view::TextMetrics {
 public:
  [[nodiscard]] view::Size measure(std::string_view text, const view::TextStyle& style,
                                   double maxWidth) const override;
};

}  // namespace valdrix::sim
