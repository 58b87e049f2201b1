#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>

#include <QObject>
#include <QPoint>

#include "desktop/scenes/LiveValue.h"
#include "desktop/scenes/MenuKeys.h"
#include "desktop/scenes/SettingsWindow.h"
#include "desktop/session/SessionBus.h"
#include "desktop/tray/TrayItem.h"
#include "observation/Lifetime.h"
#include "platform/SceneHost.h"

namespace valdrix::desktop {

/// The menu-bar extra as an item in the desktop's tray, the settings as a window of Qt Widgets that
/// exists while it is open. The menu's shortcuts work in every window of the program. Needs a
/// QApplication.
class QtSceneHost final : public platform::SceneHost {
 public:
  /// `bus` must outlive it.
  explicit QtSceneHost(SessionBus& bus, BringToFront bringToFront = {});
  ~QtSceneHost() override;

  [[nodiscard]] Token addMenuBarExtra(platform::MenuBarExtra extra) override;
  [[nodiscard]] Token addSettings(view::SettingsScene scene) override;
  void openSettings(std::optional<std::size_t> tab) override;
  /// How many tabs the settings have.
  [[nodiscard]] std::size_t tabCount() const { return settings_ ? settings_->tabs.size() : 0; }

  /// Opens the menu-bar extra's menu at that place, in points from the top left of the screens;
  /// `onClosed` is called once it is closed again. Nothing without an extra.
  void popUpMenu(QPoint position, std::function<void()> onClosed = {});
  /// Says whether the window system has a tray of its own, for where no bar shows the extra.
  void setHasX11Tray(bool hasX11Tray);
  /// The tray's item; null without a menu-bar extra.
  [[nodiscard]] const TrayItem* trayItem() const { return extra_ ? &extra_->item : nullptr; }
  /// The window, while it is open; else null.
  [[nodiscard]] SettingsWindow* settingsWindow() { return window_.get(); }

 private:
  struct Extra {
    Extra(QtSceneHost& host, platform::MenuBarExtra description);
    TrayItem item;
    LiveValue<view::Menu> menu;
  };

  void show(const view::Menu& menu);
  void windowDidClose();
  void destroyWindow();

  SessionBus& bus_;
  const BringToFront bringToFront_;
  std::unique_ptr<Extra> extra_;
  bool hasX11Tray_ = false;
  MenuKeys keys_;
  std::optional<view::SettingsScene> settings_;
  std::unique_ptr<SettingsWindow> window_;
  std::size_t lastTab_ = 0;
  QObject context_;
  Lifetime lifetime_;
};

}  // namespace valdrix::desktop
