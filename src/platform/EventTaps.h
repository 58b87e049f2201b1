#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "observation/Token.h"

namespace valdrix::platform {

/// Event types and fields of system-defined events, which carry the auxiliary control buttons
/// (volume, brightness, mute).
namespace systemDefined {
inline constexpr std::uint32_t eventType = 14;
inline constexpr std::int16_t auxiliaryControlButtons = 8;
inline constexpr std::uint32_t keyDown = 0x0A;
inline constexpr std::uint32_t keyUp = 0x0B;
}  // namespace systemDefined

/// Types under which a tap tells that it was switched off.
inline constexpr std::uint32_t tapDisabledByTimeout = 0xFFFFFFFE;
inline constexpr std::uint32_t tapDisabledByUserInput = 0xFFFFFFFF;

/// Modifier bits of an input event. Option is Alt and Command is Super on a PC keyboard.
namespace modifierFlag {
inline constexpr std::uint32_t shift = 0x20000;
inline constexpr std::uint32_t control = 0x40000;
inline constexpr std::uint32_t option = 0x80000;
inline constexpr std::uint32_t command = 0x100000;
}  // namespace modifierFlag

/// One event as a tap sees it. For a system-defined event, `data1` has the key code in bits 16 to
/// 31, the key state in bits 8 to 15 and the repeat flag in bit 0.
struct InputEvent {
  std::int16_t subtype = 0;
  std::int64_t data1 = 0;
  std::uint32_t modifierFlags = 0;
};

enum class TapResult { pass, swallow };

/// What a tap asks its owner. Both run on the main thread and must return quickly; a tap that waits
/// too long may be switched off, which it announces by an event of its own.
struct TapCallbacks {
  /// Decides one event. A tap may leave out the releases of keys. `event` is null when the event
  /// cannot be read as an input event.
  std::function<TapResult(std::uint32_t type, const InputEvent* event)> handleEvent;
  /// Whether an unmodified press of the key with this code would be swallowed if it came now. Does
  /// nothing else. An adapter that has to reserve keys beforehand releases those that would be
  /// passed on anyway, so that the desktop can have them.
  std::function<bool(std::uint32_t keyCode)> wouldSwallow;
};

/// An installed filter on input events. Destroying it removes the filter and gives the keys back.
class EventTap {
 public:
  virtual ~EventTap() = default;

  virtual void enable(bool isEnabled) = 0;
  [[nodiscard]] virtual bool isEnabled() const = 0;
  /// Connects the tap to the main run loop; it delivers nothing before, or after the token ended.
  [[nodiscard]] virtual Token addToMainRunLoop() = 0;
};

enum class TapLocation { hid = 0 };
enum class TapPlacement { headInsert = 0 };
enum class TapOptions { activeFilter = 0 };

/// Installs event taps. Main thread only.
class EventTaps {
 public:
  virtual ~EventTaps() = default;

  /// A tap for the event types in `mask` (bit 1 << type), disabled and not yet connected; null when
  /// it cannot be installed now. An event that a tap swallows reaches no other program.
  [[nodiscard]] virtual std::unique_ptr<EventTap> createTap(TapLocation location,
                                                            TapPlacement placement,
                                                            TapOptions options, std::uint32_t mask,
                                                            TapCallbacks callbacks) = 0;
};

}  // namespace valdrix::platform
