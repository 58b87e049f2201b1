#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include <QJsonObject>
#include <QPoint>

#include "desktop/keys/KeySource.h"
#include "observation/Token.h"
#include "platform/Cursor.h"
#include "platform/PanelWindow.h"
#include "platform/Pointer.h"
#include "platform/Screens.h"

namespace valdrix::desktop {

/// The ports that come from whoever draws the windows: they only make sense together.
class WindowSystem {
 public:
  virtual ~WindowSystem() = default;

  /// What serves each port, for the status: port name to backend name.
  [[nodiscard]] virtual QJsonObject backends() const = 0;
  /// Pictures of panels drawn so far.
  [[nodiscard]] virtual std::uint64_t framesDrawn() const = 0;
  /// Calls `block` when the user asks a panel for the menu, with the place in points from the top
  /// left of the screens. Never where a panel cannot be asked.
  // NOLINTNEXTLINE(performance-unnecessary-value-param): others keep it.
  virtual void setOnMenuRequested(std::function<void(QPoint)> /*block*/) {}
  /// While the token lives panels stay as they are, whatever the pointer does: a menu is open.
  [[nodiscard]] virtual Token holdPanels() { return {}; }
  /// Whether the window system has a tray of its own, and a call whenever that changes.
  [[nodiscard]] virtual bool hasTray() const { return false; }
  // NOLINTNEXTLINE(performance-unnecessary-value-param): others keep it.
  [[nodiscard]] virtual Token observeTray(std::function<void()> /*block*/) { return {}; }
  /// What makes the source of the media keys that the window system itself gives; empty where it
  /// gives them to no program. `mayTake`: whether a key may be taken before the desktop has it.
  [[nodiscard]] virtual KeySource::Maker keySource(
      // NOLINTNEXTLINE(performance-unnecessary-value-param): others keep it.
      std::function<bool(platform::MediaKey)> /*mayTake*/) {
    return {};
  }
  /// The name of the theme that the window system has programs use, empty when it has none, and a
  /// call whenever that changes.
  [[nodiscard]] virtual std::string themeName() const { return {}; }
  // NOLINTNEXTLINE(performance-unnecessary-value-param): others keep it.
  [[nodiscard]] virtual Token observeTheme(std::function<void()> /*block*/) { return {}; }

  /// Brings a window of ours that is shown, by the window system's number for it, to the front,
  /// because the user has just asked for it. Nothing where Qt has what it takes.
  virtual void bringToFront(std::uint64_t /*window*/) {}

  [[nodiscard]] virtual platform::Screens& screens() = 0;
  [[nodiscard]] virtual platform::PanelWindows& panelWindows() = 0;
  [[nodiscard]] virtual platform::Pointer& pointer() = 0;
  [[nodiscard]] virtual platform::Cursor& cursor() = 0;
};

}  // namespace valdrix::desktop
