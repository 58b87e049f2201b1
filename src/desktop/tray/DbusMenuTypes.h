#pragma once

#include <QDBusVariant>
#include <QList>
#include <QMetaType>
#include <QString>
#include <QStringList>
#include <QVariantMap>

class QDBusArgument;

namespace valdrix::desktop {

// The structures of com.canonical.dbusmenu, by their signatures.

/// (ia{sv}): what an item of a menu looks like.
struct DbusMenuProperties {
  int id = 0;
  QVariantMap values;
};

/// (ia{sv}av): an item and, each in a variant of this kind, the items below it.
struct DbusMenuLayout {
  int id = 0;
  QVariantMap properties;
  QList<QDBusVariant> children;
};

/// (isvu): something that happened to an item.
struct DbusMenuEvent {
  int id = 0;
  QString kind;
  QDBusVariant data;
  unsigned timestamp = 0;
};

/// aas: pairs of modifiers and a key.
using DbusMenuShortcut = QList<QStringList>;

/// Makes the structures known to Qt's D-Bus; once is enough.
void registerDbusMenuTypes();

QDBusArgument& operator<<(QDBusArgument& argument, const DbusMenuProperties& value);
const QDBusArgument& operator>>(const QDBusArgument& argument, DbusMenuProperties& value);
QDBusArgument& operator<<(QDBusArgument& argument, const DbusMenuLayout& value);
const QDBusArgument& operator>>(const QDBusArgument& argument, DbusMenuLayout& value);
QDBusArgument& operator<<(QDBusArgument& argument, const DbusMenuEvent& value);
const QDBusArgument& operator>>(const QDBusArgument& argument, DbusMenuEvent& value);

}  // namespace valdrix::desktop

Q_DECLARE_METATYPE(valdrix::desktop::DbusMenuProperties)
Q_DECLARE_METATYPE(valdrix::desktop::DbusMenuLayout)
Q_DECLARE_METATYPE(valdrix::desktop::DbusMenuEvent)
