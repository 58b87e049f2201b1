#include "desktop/ui/PanelPainter.h"

#include <utility>

#include <QImage>
#include <QPainter>

#include "desktop/ui/QtCanvas.h"
#include "view/HostingView.h"

namespace valdrix::desktop {

void PanelPainter::setContent(view::HostingView* content) {
  content_ = content;
  needsFullPaint_ = true;
  if (content_) content_->setScale(scale_);
}

void PanelPainter::setPictures(QSize size, double scale) {
  size_ = size;
  scale_ = scale;
  inked_ = {};
  needsFullPaint_ = true;
  if (content_) content_->setScale(scale_);
}

// The smallest rectangle of whole pixels around `points`.
QRect PanelPainter::pixels(const view::Rect& points) const {
  return QRectF(points.x * scale_, points.y * scale_, points.width * scale_, points.height * scale_)
      .toAlignedRect();
}

QRegion PanelPainter::prepareFrame(double lookAhead) {
  QRegion area;
  if (content_)
    for (const auto& part : content_->prepareFrame(lookAhead).damage.rectangles())
      area |= pixels(part);
  if (std::exchange(needsFullPaint_, false)) {
    area |= inked_;
    if (content_)
      for (const auto& item : content_->displayList()) area |= pixels(item.bounds);
  }
  area &= QRect(QPoint(), size_);
  inked_ |= area.boundingRect();
  return area;
}

QRect PanelPainter::painted() const {
  QRect all;
  if (!content_) return all;
  for (const auto& item : content_->displayList()) {
    QRect part = pixels(item.bounds);
    for (const auto& clip : item.clips) part &= pixels(clip->bounds());
    all |= part;
  }
  return all & QRect(QPoint(), size_);
}

void PanelPainter::paint(QImage& picture, const QRegion& area) const {
  QPainter painter(&picture);
  for (const QRect& part : area) paintPart(painter, part);
}

void PanelPainter::paintPart(QPainter& painter, const QRect& part) const {
  const view::Rect points{part.x() / scale_, part.y() / scale_, part.width() / scale_,
                          part.height() / scale_};
  painter.resetTransform();
  painter.setClipRect(part);
  if (!content_ || !view::isOpaque(content_->displayList(), points)) {
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.fillRect(part, Qt::transparent);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
  }
  if (!content_) return;
  painter.scale(scale_, scale_);
  QtCanvas canvas(painter, textMetrics_);
  content_->draw(canvas, points);
}

}  // namespace valdrix::desktop
