#include "desktop/scenes/BundledImage.h"

#include <QFile>

// Resources in a library are found once they are asked for; the macro wants no namespace around it.
static void initImages() { Q_INIT_RESOURCE(images); }

namespace valdrix::desktop {

QIcon bundledImage(const std::string& name) {
  initImages();
  const QString file = ":/valdrix/" + QString::fromStdString(name) + ".svg";
  if (QFile::exists(file)) {
    constexpr QSize anySize(16, 16);
    QIcon icon(file);
    if (!icon.pixmap(anySize).isNull()) return icon;
  }
  return QIcon::fromTheme("valdrix");
}

}  // namespace valdrix::desktop
