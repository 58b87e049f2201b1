#include "desktop/screens/InputParts.h"

namespace valdrix::desktop {

namespace {

QList<QRect> without(const QRect& all, QPoint hole) {
  QList<QRect> parts{
      {all.left(), all.top(), all.width(), hole.y() - all.top()},
      {all.left(), hole.y(), hole.x() - all.left(), 1},
      {hole.x() + 1, hole.y(), all.right() - hole.x(), 1},
      {all.left(), hole.y() + 1, all.width(), all.bottom() - hole.y()},
  };
  parts.removeIf([](const QRect& part) { return part.isEmpty(); });
  return parts;
}

}  // namespace

QList<QRect> inputParts(const QRect& rectangle, std::optional<QPoint> exception) {
  if (exception && rectangle.contains(*exception)) return without(rectangle, *exception);
  QList<QRect> parts;
  if (!rectangle.isEmpty()) parts.append(rectangle);
  if (exception) parts.append(QRect(*exception, QSize(1, 1)));
  return parts;
}

}  // namespace valdrix::desktop
