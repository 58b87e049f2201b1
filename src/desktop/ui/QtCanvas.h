#pragma once

#include "view/Canvas.h"

class QPainter;

namespace valdrix::desktop {

class QtTextMetrics;

/// Draws with a painter whose units are points, for as long as that painter is active.
class QtCanvas final : public view::Canvas {
 public:
  /// `metrics` are those that the views were laid out with.
  QtCanvas(QPainter& painter, const QtTextMetrics& metrics);

  void fill(const view::Path& path, const view::Color& color) override;
  void stroke(const view::Path& path, const view::Color& color, double width,
              bool hasRoundCaps) override;
  void drawText(std::string_view text, const view::TextStyle& style, const view::Rect& bounds,
                const view::Color& color) override;
  void pushClip(const view::Path& path) override;
  void popClip() override;

 private:
  QPainter& painter_;
  const QtTextMetrics& metrics_;
};

}  // namespace valdrix::desktop
