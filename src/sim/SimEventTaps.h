#pragma once

#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "platform/EventTaps.h"
#include "sim/SimAccessibility.h"
#include "sim/Trace.h"

namespace valdrix::sim {

/// The simulated keyboard and the taps on it. Every event goes through the taps that are enabled
/// and connected, the newest first, until one swallows it; what none swallows reaches the desktop.
/// The trace tells which. The object must outlive its taps.
class SimEventTaps final : public platform::EventTaps {
 public:
  SimEventTaps(Trace& trace, const SimAccessibility& accessibility);

  [[nodiscard]] std::unique_ptr<platform::EventTap> createTap(
      platform::TapLocation location, platform::TapPlacement placement,
      platform::TapOptions options, std::uint32_t mask, platform::TapCallbacks callbacks) override;

  /// The auxiliary control button with this code goes down; when it is down already, it repeats.
  platform::TapResult press(std::uint32_t keyCode, std::uint32_t modifierFlags = 0);
  platform::TapResult release(std::uint32_t keyCode, std::uint32_t modifierFlags = 0);
  /// Any event; a null `event` is one that cannot be read.
  platform::TapResult send(std::uint32_t type, const platform::InputEvent* event);

  /// Switches every tap off and tells it why: `tapDisabledByTimeout` or `tapDisabledByUserInput`.
  void disableTaps(std::uint32_t reason);
  /// Lets the creation of taps fail although the process is trusted.
  void setCreationFails(bool fails) { creationFails_ = fails; }
  /// How many taps are enabled and connected.
  [[nodiscard]] std::size_t activeTapCount() const;

 private:
  class Tap;

  platform::TapResult filter(std::uint32_t type, const platform::InputEvent* event);

  Trace& trace_;
  const SimAccessibility& accessibility_;
  bool creationFails_ = false;
  std::set<std::uint32_t> down_;
  std::vector<Tap*> taps_;  ///< the newest first
};

}  // namespace valdrix::sim
