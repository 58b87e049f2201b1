#include "desktop/ui/PaintThread.h"

#include <QImage>
#include <QPainter>
#include <QPainterPath>

namespace valdrix::desktop {

namespace {

/// More rows than Qt paints without asking for its threads.
constexpr QSize enough{8, 256};

void paintOnce() {
  QImage image(enough, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainterPath path;
  path.addEllipse(image.rect());
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.fillPath(path, QColor(0, 0, 0, 128));
}

}  // namespace

// Qt looks at the variable once, when it would use the threads for the first time. Programs that
// this one starts shall not find it.
void keepPaintingOnOneThread() {
  constexpr auto variable = "QT_NO_GUI_THREADPOOL";
  if (qEnvironmentVariableIsSet(variable)) return;
  qputenv(variable, "1");
  paintOnce();
  qunsetenv(variable);
}

}  // namespace valdrix::desktop
