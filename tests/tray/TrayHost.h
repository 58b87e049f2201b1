#pragma once

#include <optional>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QStringList>

#include "desktop/tray/BusObject.h"

namespace valdrix::tests {

/// A desktop's bar on the session's bus: the watcher that items register with, and calls to them as
/// a bar makes them. Ends with the object as a bar does that crashes.
class TrayHost {
 public:
  /// `showsItems` is false for a watcher that has no bar.
  explicit TrayHost(bool showsItems = true);
  ~TrayHost();
  TrayHost(const TrayHost&) = delete;
  TrayHost& operator=(const TrayHost&) = delete;

  /// The bus names of the items that have registered.
  [[nodiscard]] const QStringList& items() const { return items_; }

  static constexpr auto itemInterface = "org.kde.StatusNotifierItem";
  static constexpr auto menuInterface = "com.canonical.dbusmenu";

  /// Calls a method of the latest item, or of the object at its path below; the answer or the
  /// error.
  [[nodiscard]] QDBusMessage call(const QString& path, const QString& interface,
                                  const QString& method, const QVariantList& arguments = {});
  [[nodiscard]] QVariant property(const QString& path, const QString& interface,
                                  const QString& name);
  /// Calls a method of the latest item's menu.
  [[nodiscard]] QDBusMessage menu(const QString& method, const QVariantList& arguments);

  [[nodiscard]] QDBusConnection& connection() { return connection_; }

 private:
  class Watcher final : public desktop::BusObject {
   public:
    Watcher(QStringList& items, bool showsItems);
  };

  QStringList items_;
  QDBusConnection connection_;
  Watcher watcher_;
};

}  // namespace valdrix::tests
