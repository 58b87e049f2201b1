#pragma once

#include <QByteArray>
#include <QList>
#include <QMetaType>
#include <QString>

class QDBusArgument;

namespace valdrix::desktop {

// The structures of org.kde.StatusNotifierItem, by their signatures.

/// (iiay): a picture of 32 bits a pixel: alpha, red, green, blue, in this order.
struct StatusNotifierPixmap {
  int width = 0;
  int height = 0;
  QByteArray pixels;
};

/// (sa(iiay)ss)
struct StatusNotifierToolTip {
  QString iconName;
  QList<StatusNotifierPixmap> icon;
  QString title;
  QString text;
};

/// Makes the structures known to Qt's D-Bus; once is enough.
void registerStatusNotifierTypes();

QDBusArgument& operator<<(QDBusArgument& argument, const StatusNotifierPixmap& value);
const QDBusArgument& operator>>(const QDBusArgument& argument, StatusNotifierPixmap& value);
QDBusArgument& operator<<(QDBusArgument& argument, const StatusNotifierToolTip& value);
const QDBusArgument& operator>>(const QDBusArgument& argument, StatusNotifierToolTip& value);

}  // namespace valdrix::desktop

Q_DECLARE_METATYPE(valdrix::desktop::StatusNotifierPixmap)
Q_DECLARE_METATYPE(valdrix::desktop::StatusNotifierToolTip)
