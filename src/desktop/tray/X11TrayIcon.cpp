#include "desktop/tray/X11TrayIcon.h"

#include <utility>

#include <QCursor>
#include <QPixmap>

#include "desktop/tray/TrayImage.h"

namespace valdrix::desktop {

namespace {

QIcon trayIcon(const std::string& symbol) {
  QIcon icon;
  for (const int size : {16, 22, 24, 32, 44, 48, 64})
    icon.addPixmap(QPixmap::fromImage(trayImage(symbol, size)));
  return icon;
}

// Qt looks for bars on a bus of its own, which its library would start where there is none.
std::unique_ptr<QSystemTrayIcon> makeWithoutBus() {
  constexpr auto address = "DBUS_SESSION_BUS_ADDRESS";
  const bool wasSet = qEnvironmentVariableIsSet(address);
  const QByteArray before = qgetenv(address);
  qputenv(address, "disabled:");
  auto icon = std::make_unique<QSystemTrayIcon>();
  if (wasSet)
    qputenv(address, before);
  else
    qunsetenv(address);
  return icon;
}

}  // namespace

X11TrayIcon::X11TrayIcon(const TrayLook& look, bool hasBus, std::function<void(QPoint)> showMenu)
    : icon_(hasBus ? std::make_unique<QSystemTrayIcon>() : makeWithoutBus()) {
  icon_->setIcon(trayIcon(look.symbol));
  icon_->setToolTip(QString::fromStdString(look.title));
  QObject::connect(icon_.get(), &QSystemTrayIcon::activated, icon_.get(),
                   [showMenu = std::move(showMenu)](QSystemTrayIcon::ActivationReason reason) {
                     if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::Context)
                       showMenu(QCursor::pos());
                   });
  icon_->show();
}

}  // namespace valdrix::desktop
