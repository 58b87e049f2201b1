#pragma once

#include <functional>

#include <QBasicTimer>
#include <QObject>

#include "desktop/x11/X11Connection.h"
#include "observation/Listeners.h"

namespace valdrix::desktop {

/// Tells that windows of other programs came, went, or changed their places or their order. A
/// window that is dragged would be news with every step: after the first the server is asked for
/// silence, and when that ends there may be news once more.
class X11WindowNews : public QObject {
 public:
  /// `connection` must outlive it, and have no other one.
  explicit X11WindowNews(X11Connection& connection, int millisecondsOfSilence = 1000);

  [[nodiscard]] Token observe(std::function<void()> block);

 protected:
  void timerEvent(QTimerEvent* event) override;

 private:
  void listen(bool isListening);
  void handle(const xcb_generic_event_t& event);
  [[nodiscard]] bool isOurs(xcb_window_t window) const;

  X11Connection& connection_;
  const int millisecondsOfSilence_;
  bool isListening_ = false;
  QBasicTimer silence_;
  Listeners<> observers_;
  Token eventHandler_;
};

}  // namespace valdrix::desktop
