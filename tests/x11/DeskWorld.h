#pragma once

#include <cstdint>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "platform/Cursor.h"
#include "platform/PanelWindow.h"
#include "platform/Pointer.h"
#include "platform/Screens.h"
#include "view/HostingView.h"

namespace valdrix::tests {

/// A desktop with one screen, at least 700 points wide and 400 high, whose pointer and screens a
/// test moves: simulated, or a real X server. Points are screen coordinates, origin bottom left.
class DeskWorld {
 public:
  virtual ~DeskWorld() = default;

  [[nodiscard]] virtual platform::Screens& screens() = 0;
  [[nodiscard]] virtual platform::PanelWindows& panelWindows() = 0;
  [[nodiscard]] virtual platform::Pointer& pointer() = 0;
  [[nodiscard]] virtual platform::Cursor& cursor() = 0;
  [[nodiscard]] virtual view::HostingView::Services services() = 0;

  /// Moves the mouse; returns when everybody has heard of it.
  virtual void move(view::Point to) = 0;
  /// The same with the main or the right button held since a press in another program's window; at
  /// the end of a drag the button is let go where the pointer is.
  virtual void drag(const std::vector<view::Point>& path, bool withRightButton) = 0;
  /// A click of the main button where the pointer is; whether the desktop below got it.
  virtual bool clickReachesDesktop() = 0;
  /// Lets everything happen that is under way.
  virtual void settle() = 0;
  /// Runs until `content` wants no more frames.
  virtual bool runUntilStill(view::HostingView& content) = 0;
  [[nodiscard]] virtual std::uint64_t framesDrawn(platform::PanelWindow& window) = 0;

  /// The screens from now on, left to right, each `width` by `height` points and named as given;
  /// the first one is the main screen. None is possible.
  struct Monitor {
    std::string name;
    int width;
    int height;
    bool operator==(const Monitor&) const = default;
  };
  virtual void setMonitors(const std::vector<Monitor>& monitors) = 0;
  /// What the desktop calls the monitor of that name.
  virtual std::string nameOf(const std::string& monitor) { return monitor; }

  /// Whether programs are told of the pointer only while it is over their windows.
  [[nodiscard]] virtual bool hearsOnlyOfItsOwnWindows() const { return false; }
  /// Whether it looks at what a window takes only when the pointer moves, so that clicks go where
  /// they went until then.
  [[nodiscard]] virtual bool noticesRegionsOnlyOnMotion() const { return false; }
};

// What the desktops of one test program are.
[[nodiscard]] std::unique_ptr<DeskWorld> makeDeskWorld(const std::string& name);
/// Those for panels and pointer, those of them whose programs hear of drags that began in another's
/// window, and those whose monitors can be changed.
[[nodiscard]] std::vector<std::string> deskWorldNames();
[[nodiscard]] std::vector<std::string> dragWorldNames();
[[nodiscard]] std::vector<std::string> screenWorldNames();
[[nodiscard]] inline std::string deskWorldName(const testing::TestParamInfo<std::string>& info) {
  return info.param;
}

}  // namespace valdrix::tests

namespace valdrix::view {
inline std::ostream& operator<<(std::ostream& out, const Rect& r) {
  return out << r.x << ',' << r.y << ' ' << r.width << 'x' << r.height;
}
inline std::ostream& operator<<(std::ostream& out, const Point& p) {
  return out << p.x << ',' << p.y;
}
}  // namespace valdrix::view
