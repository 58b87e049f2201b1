#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <string_view>

#include <QObject>
#include <xcb/xcb.h>

#include "desktop/x11/XcbHandles.h"
#include "observation/Listeners.h"

class QSocketNotifier;

namespace valdrix::desktop {

/// A connection to the X server of our own, beside Qt's: its event masks are ours alone, and Qt
/// neither filters nor compresses what arrives. Main thread only. When the server dies Qt ends the
/// process; until then everything here does nothing.
class X11Connection {
 public:
  using Event = xcb_generic_event_t;

  /// Connects to the display that the environment names.
  X11Connection();
  ~X11Connection();
  X11Connection(const X11Connection&) = delete;
  X11Connection& operator=(const X11Connection&) = delete;

  [[nodiscard]] bool isUsable() const;
  [[nodiscard]] xcb_connection_t* get() const { return connection_.get(); }
  [[nodiscard]] int screenNumber() const { return screenNumber_; }
  [[nodiscard]] xcb_screen_t& screen() const { return *screen_; }
  [[nodiscard]] xcb_window_t root() const { return screen_ ? screen_->root : xcb_window_t{}; }
  [[nodiscard]] xcb_atom_t atom(std::string_view name);

  /// Waits for a reply: `reply(xcb_query_tree_reply, xcb_query_tree(...))`. Empty on an error.
  template <class ReplyOf, class Cookie>
  [[nodiscard]] auto reply(ReplyOf replyOf, Cookie cookie) {
    auto result = xcbOwned(replyOf(get(), cookie, nullptr));
    collect();
    return result;
  }

  /// Calls `block` with every event until the token ends.
  [[nodiscard]] Token addEventHandler(std::function<void(const Event&)> block);
  /// Calls `block` after each batch of events that arrived together.
  [[nodiscard]] Token addBatchHandler(std::function<void()> block);
  void flush();

 private:
  void collect();
  void dispatch();

  int screenNumber_ = 0;
  XcbConnection connection_;
  xcb_screen_t* screen_ = nullptr;
  Listeners<const Event&> eventHandlers_;
  Listeners<> batchHandlers_;
  std::deque<XcbOwned<Event>> events_;
  bool isDispatchScheduled_ = false;
  QObject context_;
  std::unique_ptr<QSocketNotifier> notifier_;
};

/// What kind of event it is, without the mark of one that another client sent.
[[nodiscard]] inline std::uint8_t eventType(const xcb_generic_event_t& event) {
  return event.response_type & 0x7F;
}
template <class T>
[[nodiscard]] const T& eventAs(const xcb_generic_event_t& event) {
  return reinterpret_cast<const T&>(event);
}

}  // namespace valdrix::desktop
