#pragma once

#include <functional>
#include <string>

#include <QObject>

#include "desktop/tray/BusObject.h"

namespace valdrix::desktop {

/// A tray item's title and the name of its symbol.
struct TrayLook {
  std::string title;
  std::string symbol;
};

/// An item for bars on the message bus (org.kde.StatusNotifierItem): its look, where its menu is,
/// and what bars do with it that don't draw menus themselves.
class StatusNotifierItem final : public BusObject {
 public:
  struct Handlers {
    /// The item itself was clicked, where the bar has no menu on that click.
    std::function<void()> activate;
    /// The bar wants the menu opened at the pointer. Bars don't agree on the unit of the place that
    /// they name.
    std::function<void()> showMenu;
  };

  StatusNotifierItem(const TrayLook& look, const QString& menuPath, Handlers handlers);

 private:
  [[nodiscard]] Interface describe(const TrayLook& look, const QString& menuPath);
  template <class Block>
  [[nodiscard]] Method method(const char* signature, Block block);

  Handlers handlers_;
  /// Queued clicks end with the item.
  ::QObject context_;
};

}  // namespace valdrix::desktop
