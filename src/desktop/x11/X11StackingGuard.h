#pragma once

#include <functional>
#include <map>
#include <vector>

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QObject>
#include <QRect>

#include "desktop/x11/X11Connection.h"

namespace valdrix::desktop {

/// Keeps a panel in front: the X server puts a window that is mapped or raised later above it.
/// Menus, tooltips and the like belong above a panel and are left there, and so is an unmanaged
/// window over a whole screen, which is a screen locker. No fight is kept up: a second between two
/// raises, and three of them against one window at the most.
class X11StackingGuard : public QObject {
 public:
  /// `raise` puts the panel on top. `connection` must outlive it.
  X11StackingGuard(X11Connection& connection, std::function<void()> raise,
                   int millisecondsBetweenRaises = 1000);

  /// Guards the part `area` of `window` (device pixels of the root) on the screen `screen`.
  void start(xcb_window_t window, xcb_window_t companion, const QRect& area, const QRect& screen);
  void stop();

 protected:
  void timerEvent(QTimerEvent* event) override;

 private:
  struct Neighbour {
    xcb_window_t window;
    QRect frame;
    bool isUnmanaged;
  };

  void handle(const xcb_generic_event_t& event);
  void scheduleCheck();
  void check();
  [[nodiscard]] std::vector<Neighbour> windowsAbove();
  [[nodiscard]] bool takesInput(xcb_window_t window);
  [[nodiscard]] bool belongsAbove(const Neighbour& neighbour);
  [[nodiscard]] bool isPopUp(xcb_window_t window);

  X11Connection& connection_;
  std::function<void()> raise_;
  const int millisecondsBetweenRaises_;
  xcb_window_t window_ = XCB_WINDOW_NONE;
  xcb_window_t companion_ = XCB_WINDOW_NONE;
  QRect area_;
  QRect screen_;
  std::map<xcb_window_t, int> raisesAgainst_;
  QElapsedTimer sinceRaise_;
  QBasicTimer timer_;
  xcb_atom_t typeProperty_ = XCB_ATOM_NONE;
  std::vector<xcb_atom_t> popUpTypes_;
  Token eventHandler_;
};

}  // namespace valdrix::desktop
