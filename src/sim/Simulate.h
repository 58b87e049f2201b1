#pragma once

#include <filesystem>
#include <iosfwd>

#include "sim/FramePainter.h"
#include "view/Canvas.h"

namespace valdrix::sim {

struct SimulateOptions {
  std::filesystem::path file{};
  /// Where the scenario's pictures go; made when it is missing. Empty for no pictures.
  std::filesystem::path framesFolder{};
  /// Pixels per point of the pictures, above 0.
  double scale = 1;
  /// What measures the text; without it, text is measured without a font.
  const view::TextMetrics* textMetrics = nullptr;
};

/// Plays the scenario in a file and writes its trace to `out`. Gives the process's exit code: 0, 1
/// when the trace is not the one that the scenario expects (`errors` has both side by side), or 2
/// when the scenario cannot be read or played (`errors` says why, as file:line: reason). Without a
/// `painter` pictures are only traced.
int simulate(const SimulateOptions& options, std::ostream& out, std::ostream& errors,
             FramePainter* painter);

}  // namespace valdrix::sim
