#pragma once

#include <cstdint>
#include <functional>

#include "observation/Token.h"
#include "view/Geometry.h"

namespace valdrix::platform {

/// Kinds of pointer motion, as bits of an event mask.
namespace eventMask {
inline constexpr std::uint32_t mouseMoved = 1U << 5;
inline constexpr std::uint32_t leftMouseDragged = 1U << 6;
inline constexpr std::uint32_t rightMouseDragged = 1U << 7;
}  // namespace eventMask

/// The pointer's position and motion. Main thread only.
///
/// A global monitor sees motion that is delivered to other programs, a local one motion that is
/// delivered to a window of this one. An adapter may report only motion that enters, leaves or
/// stays inside a panel's tracked rectangle (see `PanelWindow::setTrackedRectangle`), as long as
/// every crossing of its edge is reported. Motion is a change of the pointer's place: windows that
/// appear, go or change under a resting pointer are none.
class Pointer {
 public:
  virtual ~Pointer() = default;

  /// Calls `handler` for the kinds of motion in `mask` until the token ends. An empty token means
  /// that this desktop does not allow it.
  [[nodiscard]] virtual Token addGlobalMonitorForEventsMatchingMask(
      std::uint32_t mask, std::function<void()> handler) = 0;
  [[nodiscard]] virtual Token addLocalMonitorForEventsMatchingMask(
      std::uint32_t mask, std::function<void()> handler) = 0;

  /// Where the pointer is, in screen coordinates (origin bottom left), also outside every window of
  /// ours. An adapter that cannot ask answers with the last place it was told of.
  [[nodiscard]] virtual view::Point mouseLocation() const = 0;
};

}  // namespace valdrix::platform
