#pragma once

#include <functional>
#include <memory>
#include <optional>

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QTimer>

#include "desktop/session/SessionBus.h"

namespace valdrix::desktop {

/// What the user wants the windows of programs to look like, as desktops tell it.
enum class ColorScheme { noPreference, dark, light };

/// The user's wish as the desktop's portal tells it, followed for as long as it lives: the settings
/// org.freedesktop.appearance of the interface org.freedesktop.portal.Settings. The portal may be
/// absent, die and come back; what it said last counts until it says otherwise. Main thread only.
class AppearancePortal {
 public:
  /// `bus` must outlive it. `onChanged` is called when the wish is another one.
  AppearancePortal(SessionBus& bus, std::function<void()> onChanged);
  AppearancePortal(const AppearancePortal&) = delete;
  AppearancePortal& operator=(const AppearancePortal&) = delete;

  [[nodiscard]] ColorScheme colorScheme() const { return scheme_; }
  /// Has the bus start a portal that does not run, once, unless one has answered. Not done before
  /// there is something to see, because a portal is several programs.
  void wantAnswer();

 private:
  void join(const QDBusConnection& connection);
  void ask(bool mayStart);
  void take(ColorScheme scheme);

  std::function<void()> onChanged_;
  std::optional<QDBusConnection> connection_;
  std::unique_ptr<QDBusServiceWatcher> portal_;
  ColorScheme scheme_ = ColorScheme::noPreference;
  bool isAnswered_ = false;
  /// Fires when the portal says that the wish has changed.
  QTimer news_;
  Token connections_;
};

}  // namespace valdrix::desktop
