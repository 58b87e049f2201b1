#pragma once

#include <QRect>
#include <QRegion>
#include <QSize>

#include "view/Geometry.h"

class QImage;
class QPainter;

namespace valdrix::view {
class HostingView;
}

namespace valdrix::desktop {

class QtTextMetrics;

/// Paints what a panel shows into pictures of it, only where it looks different. Areas are in
/// device pixels, from the panel's top left. Main thread only.
class PanelPainter {
 public:
  /// `textMetrics` are those that the views are laid out with, and must outlive it.
  explicit PanelPainter(const QtTextMetrics& textMetrics) : textMetrics_(textMetrics) {}

  /// What is shown from the next frame on, until it is set anew; null for nothing.
  void setContent(view::HostingView* content);
  /// Pictures are of that size now, with `scale` device pixels to a point, and transparent yet.
  void setPictures(QSize size, double scale);

  /// Brings the content up to date; `lookAhead` is that of `HostingView::prepareFrame`. Returns
  /// what looks different from the frame before.
  [[nodiscard]] QRegion prepareFrame(double lookAhead);
  /// Paints that much of the latest frame. Nothing of it may be left as the frame before had it.
  void paint(QImage& picture, const QRegion& area) const;

  /// A rectangle around all that has looked different from a transparent picture so far.
  [[nodiscard]] const QRect& inked() const { return inked_; }
  /// A rectangle around what the latest frame shows.
  [[nodiscard]] QRect painted() const;

 private:
  void paintPart(QPainter& painter, const QRect& part) const;
  [[nodiscard]] QRect pixels(const view::Rect& points) const;

  const QtTextMetrics& textMetrics_;
  view::HostingView* content_ = nullptr;
  QSize size_;
  double scale_ = 1;
  bool needsFullPaint_ = true;
  QRect inked_;
};

}  // namespace valdrix::desktop
