#pragma once

#include <cstdint>
#include <optional>

#include <QPoint>

#include "desktop/x11/X11Connection.h"
#include "observation/Lifetime.h"
#include "observation/Listeners.h"
#include "platform/Pointer.h"

namespace valdrix::desktop {

/// The pointer as the X server knows it. Panels report motion to it from their input regions; it
/// hands it on to the monitors. While the mouse is elsewhere no event reaches this process: raw
/// motion is watched only while a button is held or a panel has lost sight of the pointer.
class X11Pointer final : public platform::Pointer {
 public:
  /// A place in device pixels from the top left of the X screen, and the buttons held there (the
  /// server's state mask).
  struct Place {
    QPoint position;
    std::uint16_t state = 0;
  };

  /// `connection` must outlive it.
  explicit X11Pointer(X11Connection& connection);

  [[nodiscard]] Token addGlobalMonitorForEventsMatchingMask(std::uint32_t mask,
                                                            std::function<void()> handler) override;
  [[nodiscard]] Token addLocalMonitorForEventsMatchingMask(std::uint32_t mask,
                                                           std::function<void()> handler) override;
  [[nodiscard]] view::Point mouseLocation() const override;

  /// Where the pointer is said to be while it is over no X window and the server has not been told
  /// of its place: on a Wayland desktop, over a program of that kind.
  static constexpr QPoint nowhere{-32768, -32768};

  /// Asks the server. None when the pointer is on another X screen.
  [[nodiscard]] std::optional<Place> query() const;
  /// Whether the pointer, last seen over an X window at `position`, has left that for nowhere. A
  /// server with a mouse of its own knows of another window, or of the pointer's way out.
  bool hasLeftServer(QPoint position);

  enum class Destination { ourWindow, elsewhere };
  /// Motion with the buttons of `state` held has been delivered to `destination`.
  void report(Destination destination, std::uint16_t state);

  /// Calls `block` with the pointer's place after it moved anywhere, while a button is held or a
  /// `watchMotion` token lives. Never without the XInput extension.
  [[nodiscard]] Token addMotionListener(std::function<void(const Place&)> block);
  [[nodiscard]] Token watchMotion();
  /// The pointer may have moved unseen: the listeners hear of its place after this batch of events.
  void expectMotion() { hasMoved_ = true; }
  /// While the token lives, motion elsewhere is not reported; what has been missed is, afterwards.
  [[nodiscard]] Token holdMotion();

 private:
  void selectRawEvents();
  void handle(const xcb_generic_event_t& event);
  void handleBatch();

  X11Connection& connection_;
  mutable view::Point lastLocation_;
  /// Where the pointer was when it went nowhere.
  mutable std::optional<QPoint> exit_;
  Listeners<std::uint32_t> globalMonitors_;
  Listeners<std::uint32_t> localMonitors_;
  Listeners<const Place&> motionListeners_;
  std::uint8_t xinputOpcode_ = 0;
  int heldButtons_ = 0;
  int watchers_ = 0;
  int holders_ = 0;
  bool isSelectingMotion_ = false;
  bool hasMoved_ = false;
  Token eventHandler_;
  Token batchHandler_;
  Lifetime lifetime_;
};

}  // namespace valdrix::desktop
