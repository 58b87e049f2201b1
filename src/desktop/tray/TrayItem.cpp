#include "desktop/tray/TrayItem.h"

#include <utility>

#include <QCursor>

namespace valdrix::desktop {

namespace {

const QString menuPath = QStringLiteral("/StatusNotifierItem/Menu");

}  // namespace

TrayItem::TrayItem(SessionBus& bus, TrayLook look, Handlers handlers)
    : bus_(bus),
      look_(std::move(look)),
      activate_(std::move(handlers.activate)),
      ownMenu_(handlers.aboutToShow),
      busMenu_(menuPath, std::move(handlers.aboutToShow)),
      item_(look_, menuPath,
            {.activate = activate_, .showMenu = [this] { popUpMenu(QCursor::pos()); }}),
      registration_(bus, {.serve =
                              [this](QDBusConnection& connection) {
                                busMenu_.serve(connection);
                                item_.serve(connection);
                              },
                          .changed = [this] { choosePlace(); }}) {}

void TrayItem::setMenu(const view::Menu& menu) {
  ownMenu_.setMenu(menu);
  busMenu_.setMenu(menu);
}

void TrayItem::setHasX11Tray(bool hasX11Tray) {
  hasX11Tray_ = hasX11Tray;
  choosePlace();
}

void TrayItem::popUpMenu(QPoint position, std::function<void()> onClosed) {
  if (TrayMenu::canPopUp()) return ownMenu_.popUp(position, std::move(onClosed));
  activate_();
  if (onClosed) onClosed();
}

bool TrayItem::belongsInX11Tray() const {
  const auto state = registration_.state();
  if (!hasX11Tray_ || state == StatusNotifierRegistration::State::shown) return false;
  // A new one has to wait until it is known that there is no bar.
  return x11Icon_ || state == StatusNotifierRegistration::State::absent || !bus_.isConfigured();
}

void TrayItem::choosePlace() {
  if (belongsInX11Tray() == x11Icon_.has_value()) return;
  if (x11Icon_)
    x11Icon_.reset();
  else
    x11Icon_.emplace(look_, bus_.isConfigured(), [this](QPoint position) { popUpMenu(position); });
}

TrayItem::Place TrayItem::place() const {
  if (x11Icon_) return Place::x11Tray;
  return registration_.state() == StatusNotifierRegistration::State::shown
             ? Place::statusNotifierHost
             : Place::nowhere;
}

}  // namespace valdrix::desktop
