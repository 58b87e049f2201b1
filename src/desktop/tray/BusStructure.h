#pragma once

#include <QDBusArgument>

namespace valdrix::desktop {

/// Writes a structure of these fields.
template <class... Fields>
QDBusArgument& writeStructure(QDBusArgument& argument, const Fields&... fields) {
  argument.beginStructure();
  (argument << ... << fields);
  argument.endStructure();
  return argument;
}

/// Reads a structure of these fields.
template <class... Fields>
const QDBusArgument& readStructure(const QDBusArgument& argument, Fields&... fields) {
  argument.beginStructure();
  (argument >> ... >> fields);
  argument.endStructure();
  return argument;
}

}  // namespace valdrix::desktop
