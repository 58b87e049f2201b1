#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include <QPointF>
#include <QSize>

namespace valdrix::tests {

/// Another program under a compositor: a blue window that fills the screen and counts the clicks
/// that it gets, and the mouse of the compositor's user. Calls return when the compositor has dealt
/// with what they did.
class WaylandTestClient {
 public:
  /// Connects to what the environment says. `extent` is the size of all outputs together.
  explicit WaylandTestClient(QSize extent);
  ~WaylandTestClient();
  WaylandTestClient(const WaylandTestClient&) = delete;
  WaylandTestClient& operator=(const WaylandTestClient&) = delete;

  /// Whether the window stands there.
  [[nodiscard]] bool isReady() const;
  /// Moves the mouse to a logical pixel of all outputs.
  void movePointer(QPointF to);
  /// Buttons as in <linux/input-event-codes.h>.
  void setButton(std::uint32_t button, bool isPressed);
  /// Presses of the main button that the window got so far.
  [[nodiscard]] int presses();
  void roundTrip();

 private:
  struct Connection;
  std::unique_ptr<Connection> connection_;
};

}  // namespace valdrix::tests
