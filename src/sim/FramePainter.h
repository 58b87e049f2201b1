#pragma once

#include <filesystem>

#include "view/HostingView.h"

namespace valdrix::sim {

/// Writes pictures of the simulated panel.
class FramePainter {
 public:
  virtual ~FramePainter() = default;

  /// Paints `part` of what `content` shows (its coordinates, in points) over transparency as a PNG
  /// with `scale` pixels per point. Whether the file is there now.
  [[nodiscard]] virtual bool paint(const view::HostingView& content, const view::Rect& part,
                                   double scale, const std::filesystem::path& file) = 0;
};

}  // namespace valdrix::sim
