#include "desktop/tray/StatusNotifierTypes.h"

#include <QDBusMetaType>

#include "desktop/tray/BusStructure.h"

namespace valdrix::desktop {

void registerStatusNotifierTypes() {
  qDBusRegisterMetaType<StatusNotifierPixmap>();
  qDBusRegisterMetaType<QList<StatusNotifierPixmap>>();
  qDBusRegisterMetaType<StatusNotifierToolTip>();
}

QDBusArgument& operator<<(QDBusArgument& argument, const StatusNotifierPixmap& value) {
  return writeStructure(argument, value.width, value.height, value.pixels);
}
const QDBusArgument& operator>>(const QDBusArgument& argument, StatusNotifierPixmap& value) {
  return readStructure(argument, value.width, value.height, value.pixels);
}
QDBusArgument& operator<<(QDBusArgument& argument, const StatusNotifierToolTip& value) {
  return writeStructure(argument, value.iconName, value.icon, value.title, value.text);
}
const QDBusArgument& operator>>(const QDBusArgument& argument, StatusNotifierToolTip& value) {
  return readStructure(argument, value.iconName, value.icon, value.title, value.text);
}

}  // namespace valdrix::desktop
