#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <map>
#include <utility>
#include <vector>

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QObject>
#include <QRect>

#include "desktop/x11/X11Connection.h"
#include "desktop/x11/X11WindowNews.h"

namespace valdrix::desktop {

/// Keeps a panel in front: the X server puts a window that is mapped or raised later above it.
/// Menus, tooltips and the like belong above a panel and are left there, and so is a screen locker:
/// an unmanaged window over a whole screen that is not a window manager's frame around a program's.
/// No fight is kept up: a second between two raises, and three of them a minute against one window.
class X11StackingGuard : public QObject {
 public:
  /// How often a panel may be raised; times in milliseconds.
  struct Limits {
    int betweenRaises = 1000;
    std::size_t raisesAgainstOneWindow = 3;
    int perTime = 60'000;
  };

  /// `raise` puts the panel on top. `connection` and `news`, which is of it, must outlive it.
  X11StackingGuard(X11Connection& connection, X11WindowNews& news, std::function<void()> raise,
                   const Limits& limits);
  X11StackingGuard(X11Connection& connection, X11WindowNews& news, std::function<void()> raise)
      : X11StackingGuard(connection, news, std::move(raise), Limits{}) {}

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

  void scheduleCheck(qint64 milliseconds);
  void check();
  [[nodiscard]] qint64 untilRaiseAgainst(const std::vector<Neighbour>& neighbours);
  [[nodiscard]] std::vector<Neighbour> windowsAbove();
  [[nodiscard]] bool takesInput(xcb_window_t window);
  [[nodiscard]] bool belongsAbove(const Neighbour& neighbour);
  [[nodiscard]] bool isPopUp(xcb_window_t window);
  [[nodiscard]] bool isFrame(xcb_window_t window, int depth);

  X11Connection& connection_;
  X11WindowNews& news_;
  std::function<void()> raise_;
  const Limits limits_;
  xcb_window_t window_ = XCB_WINDOW_NONE;
  xcb_window_t companion_ = XCB_WINDOW_NONE;
  QRect area_;
  QRect screen_;
  /// When the panel was raised above each, as far as that counts still; milliseconds of `clock_`.
  std::map<xcb_window_t, std::deque<qint64>> raisesAgainst_;
  QElapsedTimer clock_;
  qint64 nextRaise_ = 0;
  QBasicTimer timer_;
  xcb_atom_t typeProperty_ = XCB_ATOM_NONE;
  xcb_atom_t stateProperty_ = XCB_ATOM_NONE;
  std::vector<xcb_atom_t> popUpTypes_;
  Token newsObserver_;
};

}  // namespace valdrix::desktop
