#pragma once

#include <functional>
#include <string>
#include <vector>

#include <QObject>

#include "desktop/tray/BusObject.h"
#include "desktop/tray/DbusMenuTypes.h"
#include "view/Menu.h"

namespace valdrix::desktop {

/// A menu on the message bus (com.canonical.dbusmenu), which a bar draws and clicks for us. An item
/// that is there before and after a change keeps its number, and no number is given twice, so a
/// click on a menu that is just being replaced hits what the user saw or nothing.
class DbusMenu final : public BusObject {
 public:
  /// `aboutToShow` is called each time somebody is about to open the menu; it may set a new one.
  DbusMenu(const QString& path, std::function<void()> aboutToShow);

  void setMenu(const view::Menu& menu);

 private:
  struct Item {
    int id = 0;
    QVariantMap properties;
    std::function<void()> action;
  };
  [[nodiscard]] Interface describe();
  [[nodiscard]] const Item* find(int id) const;
  [[nodiscard]] QDBusMessage layout(const QDBusMessage& call) const;
  [[nodiscard]] QDBusMessage groupProperties(const QDBusMessage& call) const;
  [[nodiscard]] QDBusMessage property(const QDBusMessage& call) const;
  [[nodiscard]] QDBusMessage showAll(const QDBusMessage& call);
  [[nodiscard]] QDBusMessage handleAll(const QDBusMessage& call);
  /// Whether there is such an item.
  bool handle(int id, const QString& kind);
  /// Whether the menu is another one now.
  bool prepareToShow();

  std::function<void()> aboutToShow_;
  std::vector<Item> items_;
  int nextId_ = 1;  ///< the root is 0
  unsigned revision_ = 1;
  /// Queued clicks end with the menu.
  ::QObject context_;
};

}  // namespace valdrix::desktop
