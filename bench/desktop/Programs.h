#pragma once

#include <memory>
#include <optional>

#include <QPoint>

#include "bench/desktop/AgentStatus.h"
#include "bench/desktop/BenchDesktop.h"
#include "bench/desktop/ProcessProbe.h"
#include "tests/support/SpawnedProgram.h"

namespace valdrix::bench {

/// The measured programs, each with its picture at a place of its own on the screen.
namespace place {
/// The middle of the collapsed panel, and of the empty window's black rectangle.
inline constexpr QPoint panel{BenchDesktop::size.width() / 2, 10};
inline constexpr QPoint emptyWindow{360, 10};
/// Black only while an indicator hangs below the notch.
inline constexpr QPoint strip{BenchDesktop::size.width() / 2, 33};
/// Inside the rectangle that the painting yardstick paints.
inline constexpr QPoint paintedRectangle{2040, 634};
/// On no window of any program.
inline constexpr QPoint elsewhere{1800, 800};
}  // namespace place

namespace key {
inline constexpr xcb_keysym_t shift = 0xFFE1;
inline constexpr xcb_keysym_t lowerVolume = 0x1008FF11;
inline constexpr xcb_keysym_t raiseVolume = 0x1008FF13;
/// The painting yardstick's: two programs cannot have the same.
inline constexpr xcb_keysym_t play = 0x1008FF14;
}  // namespace key

using Program = std::unique_ptr<tests::SpawnedProgram>;

/// Starts without waiting for anything.
[[nodiscard]] Program startValdrix();
[[nodiscard]] Program startEmptyWindow();
[[nodiscard]] Program startGrabAndPaint(const BenchDesktop& desktop);

/// Waits until the agent has its window and its keys. Whether it has.
[[nodiscard]] bool waitForAgent();
/// Waits until the panel's picture has not changed for a while. Seconds from the call to the last
/// change, or nothing when it never rests.
[[nodiscard]] std::optional<double> secondsUntilRest(const BenchDesktop& desktop);

}  // namespace valdrix::bench
