#include "desktop/tray/DbusMenuTypes.h"

#include <QDBusMetaType>

#include "desktop/tray/BusStructure.h"

namespace valdrix::desktop {

void registerDbusMenuTypes() {
  qDBusRegisterMetaType<DbusMenuProperties>();
  qDBusRegisterMetaType<QList<DbusMenuProperties>>();
  qDBusRegisterMetaType<DbusMenuLayout>();
  qDBusRegisterMetaType<DbusMenuEvent>();
  qDBusRegisterMetaType<QList<DbusMenuEvent>>();
  qDBusRegisterMetaType<DbusMenuShortcut>();
}

QDBusArgument& operator<<(QDBusArgument& argument, const DbusMenuProperties& value) {
  return writeStructure(argument, value.id, value.values);
}
const QDBusArgument& operator>>(const QDBusArgument& argument, DbusMenuProperties& value) {
  return readStructure(argument, value.id, value.values);
}
QDBusArgument& operator<<(QDBusArgument& argument, const DbusMenuLayout& value) {
  return writeStructure(argument, value.id, value.properties, value.children);
}
const QDBusArgument& operator>>(const QDBusArgument& argument, DbusMenuLayout& value) {
  return readStructure(argument, value.id, value.properties, value.children);
}
QDBusArgument& operator<<(QDBusArgument& argument, const DbusMenuEvent& value) {
  return writeStructure(argument, value.id, value.kind, value.data, value.timestamp);
}
const QDBusArgument& operator>>(const QDBusArgument& argument, DbusMenuEvent& value) {
  return readStructure(argument, value.id, value.kind, value.data, value.timestamp);
}

}  // namespace valdrix::desktop
