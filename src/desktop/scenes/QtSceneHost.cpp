#include "desktop/scenes/QtSceneHost.h"

#include <malloc.h>
#include <utility>

#include <QPixmapCache>

namespace valdrix::desktop {

QtSceneHost::QtSceneHost(SessionBus& bus, BringToFront bringToFront)
    : bus_(bus), bringToFront_(std::move(bringToFront)) {}

QtSceneHost::~QtSceneHost() = default;

QtSceneHost::Extra::Extra(QtSceneHost& host, platform::MenuBarExtra description)
    : item(host.bus_, {description.title, description.symbol},
           {.aboutToShow = [this] { menu.refresh(); },
            .activate = [&host] { host.openSettings(std::nullopt); }}),
      menu(std::move(description.content), [&host](const view::Menu& value) { host.show(value); }) {
  menu.refreshSoon();
}

Token QtSceneHost::addMenuBarExtra(platform::MenuBarExtra extra) {
  extra_ = std::make_unique<Extra>(*this, std::move(extra));
  extra_->item.setHasX11Tray(hasX11Tray_);
  return Token(lifetime_.weak([this] {
    extra_.reset();
    show({});
  }));
}

void QtSceneHost::show(const view::Menu& menu) {
  keys_.setMenu(menu);
  if (extra_) extra_->item.setMenu(menu);
}

void QtSceneHost::popUpMenu(QPoint position, std::function<void()> onClosed) {
  if (extra_) extra_->item.popUpMenu(position, std::move(onClosed));
}

void QtSceneHost::setHasX11Tray(bool hasX11Tray) {
  hasX11Tray_ = hasX11Tray;
  if (extra_) extra_->item.setHasX11Tray(hasX11Tray);
}

Token QtSceneHost::addSettings(view::SettingsScene scene) {
  settings_ = std::move(scene);
  return Token(lifetime_.weak([this] {
    destroyWindow();
    settings_.reset();
  }));
}

void QtSceneHost::openSettings(std::optional<std::size_t> tab) {
  if (!settings_ || settings_->tabs.empty()) return;
  if (!window_) {
    window_ = std::make_unique<SettingsWindow>(
        *settings_, SettingsWindow::Handlers{.closed = [this] { windowDidClose(); },
                                             .bringToFront = bringToFront_});
    window_->selectTab(lastTab_);
  }
  if (tab) window_->selectTab(*tab);
  window_->open();
}

void QtSceneHost::windowDidClose() {
  // It is in the middle of an event of its own.
  QMetaObject::invokeMethod(
      &context_,
      [this] {
        if (window_ && !window_->isVisible()) destroyWindow();
      },
      Qt::QueuedConnection);
}

void QtSceneHost::destroyWindow() {
  if (!window_) return;
  lastTab_ = window_->tab();
  window_.reset();
  // It may stay closed for weeks.
  QPixmapCache::clear();
  ::malloc_trim(0);
}

}  // namespace valdrix::desktop
